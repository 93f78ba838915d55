// Keyed data beside the simplest loop, and FlexBuffers maps and MessagePack maps with the same 32-bit numbers; property
// lists, whose peer is Python's plistlib (see python_property_list.py).
#include <benchmark/benchmark.h>
#include <flatbuffers/flexbuffers.h>

#include <filesystem>
#include <fstream>
#include <msgpack.hpp>

#include "velan/base/ByteOrder.h"
#include "velan/base/propertylist/PropertyList.h"
#include "velan/keyed/KeyedFiles.h"
#include "velan/keyed/KeyedIndex.h"
#include "velan/keyed/KeyedReading.h"
#include "velan/keyed/KeyedWriting.h"

namespace velan {
namespace {

// Keys of MessagePack and FlexBuffers are texts of the same length for all sizes.
std::string textKey(uint32_t key) {
  char text[9];
  std::snprintf(text, sizeof text, "%08x", key);
  return text;
}

MutableData keyedData(uint32_t count) {
  MutableData data;
  for (uint32_t key = 0; key < count; ++key) addUnsigned(data, key, key);
  return data;
}

std::vector<uint8_t> flexBuffer(uint32_t count) {
  flexbuffers::Builder builder;
  builder.Map([&] {
    for (uint32_t key = 0; key < count; ++key) builder.UInt(textKey(key).c_str(), key);
  });
  builder.Finish();
  return builder.GetBuffer();
}

void packMap(msgpack::sbuffer& buffer, uint32_t count) {
  msgpack::packer<msgpack::sbuffer> packer(buffer);
  packer.pack_map(count);
  for (uint32_t key = 0; key < count; ++key) {
    packer.pack_uint32(key);
    packer.pack_uint32(key);
  }
}

// What a look-up seeks: the first record, the last, or one that is not there.
uint32_t soughtKey(const benchmark::State& state) {
  const auto count = static_cast<uint32_t>(state.range(0));
  return state.range(1) == 0 ? 0 : state.range(1) == 1 ? count - 1 : count;
}

void setItems(benchmark::State& state) { state.SetItemsProcessed(state.iterations() * state.range(0)); }

void BM_AppendKeyed(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(keyedData(static_cast<uint32_t>(state.range(0))));
  setItems(state);
}

void BM_AppendFlexBuffers(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(flexBuffer(static_cast<uint32_t>(state.range(0))));
  setItems(state);
}

void BM_AppendMessagePack(benchmark::State& state) {
  for (auto _ : state) {
    msgpack::sbuffer buffer;
    packMap(buffer, static_cast<uint32_t>(state.range(0)));
    benchmark::DoNotOptimize(buffer.data());
  }
  setItems(state);
}

void BM_LookUpKeyed(benchmark::State& state) {
  const Data data = keyedData(static_cast<uint32_t>(state.range(0))).takeData();
  const uint32_t key = soughtKey(state);
  for (auto _ : state) benchmark::DoNotOptimize(unsignedForKey(data, key));
}

void BM_LookUpIndexed(benchmark::State& state) {
  const Data data = keyedData(static_cast<uint32_t>(state.range(0))).takeData();
  const auto index = KeyedIndex::keyedIndex(data);
  const uint32_t key = soughtKey(state);
  for (auto _ : state) benchmark::DoNotOptimize(unsignedForKey(index->bytesFrom(VLun, key), key));
}

void BM_IndexKeyed(benchmark::State& state) {
  const Data data = keyedData(static_cast<uint32_t>(state.range(0))).takeData();
  for (auto _ : state) benchmark::DoNotOptimize(KeyedIndex::keyedIndex(data));
  setItems(state);
}

// The simplest loop that tells variable records from others.
const uint8_t* findPlainly(std::span<const uint8_t> bytes, uint32_t marker, uint32_t key) {
  size_t at = 0;
  while (bytes.size() - at >= kKeyedHeaderSize) {
    const auto found = loadBigEndian<uint32_t>(&bytes[at]);
    if (found == marker && loadBigEndian<uint32_t>(&bytes[at + 4]) == key) return &bytes[at];
    const bool variable = found == VLst || found == VLdt || found == VLpl;
    const uint64_t size = kKeyedHeaderSize + (variable ? uint64_t{loadBigEndian<uint32_t>(&bytes[at + 8])} : 0);
    if (size > bytes.size() - at) break;
    at += size;
  }
  return nullptr;
}

void BM_LookUpPlainly(benchmark::State& state) {
  const Data data = keyedData(static_cast<uint32_t>(state.range(0))).takeData();
  const uint32_t key = soughtKey(state);
  for (auto _ : state) {
    const uint8_t* const found = findPlainly(data.span(), VLun, key);
    benchmark::DoNotOptimize(found ? loadBigEndian<uint32_t>(found + 8) : 0);
  }
}

void BM_LookUpFlexBuffers(benchmark::State& state) {
  const auto buffer = flexBuffer(static_cast<uint32_t>(state.range(0)));
  const std::string key = textKey(soughtKey(state));
  for (auto _ : state) {
    const auto map = flexbuffers::GetRoot(buffer.data(), buffer.size()).AsMap();
    benchmark::DoNotOptimize(map[key.c_str()].AsUInt32());
  }
}

// MessagePack has no access in place: the buffer is unpacked, then the map is scanned.
void BM_LookUpMessagePack(benchmark::State& state) {
  msgpack::sbuffer buffer;
  packMap(buffer, static_cast<uint32_t>(state.range(0)));
  const uint32_t key = soughtKey(state);
  for (auto _ : state) {
    const auto handle = msgpack::unpack(buffer.data(), buffer.size());
    const auto& map = handle.get().via.map;
    const auto found =
        std::find_if(map.ptr, map.ptr + map.size, [key](const auto& entry) { return entry.key.via.u64 == key; });
    benchmark::DoNotOptimize(found);
  }
}

void BM_SetKeyed(benchmark::State& state) {
  MutableData data = keyedData(static_cast<uint32_t>(state.range(0)));
  const uint32_t key = soughtKey(state);
  for (auto _ : state) benchmark::DoNotOptimize(setUnsigned(data, 5, key));
}

void BM_SetFlexBuffers(benchmark::State& state) {
  auto buffer = flexBuffer(static_cast<uint32_t>(state.range(0)));
  const std::string key = textKey(soughtKey(state));
  for (auto _ : state) {
    const auto map = flexbuffers::GetRoot(buffer.data(), buffer.size()).AsMap();
    benchmark::DoNotOptimize(map[key.c_str()].MutateUInt(0));
  }
}

void BM_IsValidKeyed(benchmark::State& state) {
  const Data data = keyedData(static_cast<uint32_t>(state.range(0))).takeData();
  for (auto _ : state) benchmark::DoNotOptimize(isValid(data));
  setItems(state);
}

void BM_IsValidFlexBuffers(benchmark::State& state) {
  const auto buffer = flexBuffer(static_cast<uint32_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(flexbuffers::VerifyBuffer(buffer.data(), buffer.size(), nullptr));
  setItems(state);
}

void BM_IsValidMessagePack(benchmark::State& state) {
  msgpack::sbuffer buffer;
  packMap(buffer, static_cast<uint32_t>(state.range(0)));
  msgpack::null_visitor visitor;
  for (auto _ : state) benchmark::DoNotOptimize(msgpack::parse(buffer.data(), buffer.size(), visitor));
  setItems(state);
}

void BM_IsEqualInAnotherOrder(benchmark::State& state) {
  const auto count = static_cast<uint32_t>(state.range(0));
  const MutableData forward = keyedData(count);
  MutableData backward;
  for (uint32_t key = count; key-- > 0;) addUnsigned(backward, key, key);
  for (auto _ : state) benchmark::DoNotOptimize(isEqualToKeyedData(forward, backward, 0));
}

void BM_WriteStringsToFile(benchmark::State& state) {
  const auto path = std::filesystem::temp_directory_path() / "velan-strings-benchmark";
  const std::vector<String> strings(static_cast<size_t>(state.range(0)), u"one of many strings of some length"_s);
  for (auto _ : state) {
    benchmark::DoNotOptimize(writeKeyedStringsToFile(strings, String(path.u16string()), false));
  }
  std::filesystem::remove(path);
  setItems(state);
}

// 30,000 dictionaries like those of a catalogue: some 210,000 objects.
Value catalogue() {
  ValueArray list;
  for (int i = 0; i < 30000; ++i) {
    const String name = String::fromUTF8("document number " + std::to_string(i));
    list.push_back(ValueDictionary{{u"name", name},
                                   {u"size", i * 37},
                                   {u"date", Date(i * 1000.5)},
                                   {u"score", i / 7.0},
                                   {u"tags", ValueArray{u"red", u"green"}}});
  }
  return list;
}

// With a path in VELAN_PROPERTY_LIST the file lies there for Python, too.
Data catalogueFile(PropertyListFormat format) {
  const Data file = writePropertyList(catalogue(), format);
  if (const char* path = std::getenv("VELAN_PROPERTY_LIST")) {
    std::ofstream(path + std::string(format == PropertyListFormat::Binary ? ".binary" : ".xml")) << file.view();
  }
  return file;
}

void BM_ReadPropertyList(benchmark::State& state) {
  const Data file = catalogueFile(static_cast<PropertyListFormat>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(readPropertyList(file));
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(file.length()));
}

void BM_WritePropertyList(benchmark::State& state) {
  const auto format = static_cast<PropertyListFormat>(state.range(0));
  const Value value = readPropertyList(catalogueFile(format));
  for (auto _ : state) benchmark::DoNotOptimize(writePropertyList(value, format));
}

#define SIZES Arg(16)->Arg(1024)->Arg(100000)
#define LOOKUPS ArgsProduct({{16, 1024, 100000}, {0, 1, 2}})
BENCHMARK(BM_AppendKeyed)->SIZES;
BENCHMARK(BM_AppendFlexBuffers)->SIZES;
BENCHMARK(BM_AppendMessagePack)->SIZES;
BENCHMARK(BM_LookUpKeyed)->LOOKUPS;
BENCHMARK(BM_LookUpIndexed)->LOOKUPS;
BENCHMARK(BM_IndexKeyed)->SIZES;
BENCHMARK(BM_LookUpPlainly)->LOOKUPS;
BENCHMARK(BM_LookUpFlexBuffers)->LOOKUPS;
BENCHMARK(BM_LookUpMessagePack)->LOOKUPS;
BENCHMARK(BM_SetKeyed)->ArgsProduct({{16, 1024, 100000}, {0, 1}});
BENCHMARK(BM_SetFlexBuffers)->ArgsProduct({{16, 1024, 100000}, {0, 1}});
BENCHMARK(BM_IsValidKeyed)->SIZES;
BENCHMARK(BM_IsValidFlexBuffers)->SIZES;
BENCHMARK(BM_IsValidMessagePack)->SIZES;
BENCHMARK(BM_IsEqualInAnotherOrder)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteStringsToFile)->Arg(10000000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadPropertyList)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WritePropertyList)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velan
