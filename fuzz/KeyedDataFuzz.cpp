// Bytes go through every operation on keyed data; validity, inspection, edits and copies are held against each other.
#include "fuzz/FuzzTarget.h"
#include "tests/keyed/EveryOperation.h"
#include "velan/keyed/KeyedInspection.h"

using namespace velan;

namespace {

// Removing what is not there leaves exactly the whole records.
void requireRepaired(const Data& data, const KeyedInspection& inspection) {
  constexpr uint32_t kKey = 0xFFFFFFFF;
  if (containsBoolForKey(data, kKey)) return;
  MutableData repaired(data);
  removeBoolForKey(repaired, kKey);
  require(repaired.view() == data.view().substr(0, inspection.damageOffset));
  require(isEqualToKeyedData(repaired, repaired, 0));
}

// Values that were read and written again stay the same from then on.
void requireSameValues(const Data& data) {
  const ValueDictionary values = getKeyedValues(data);
  MutableData written;
  setKeyedValues(written, values);
  require(isValid(written));
  const ValueDictionary again = getKeyedValues(written);
  require(again.size() <= values.size());
  MutableData rewritten;
  setKeyedValues(rewritten, again);
  require(Value(getKeyedValues(rewritten)) == Value(again));
}

}  // namespace

FUZZ_TARGET(keyed_data) {
  const Data data = input.data();
  const bool valid = applyEveryOperation(data.view());
  require(valid == isTiledByRecords(data.view()));
  const KeyedInspection inspection = inspectKeyedData(data);
  require(valid == (inspection.damage == KeyedDamage::None) && valid == (inspection.damageOffset == data.length()));
  require(!valid || numberOfKeyedData(data, 0) == inspection.records.size());
  requireRepaired(data, inspection);
  requireSameValues(data);
}
