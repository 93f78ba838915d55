// Appending and reading blocks beside LevelDB, LMDB, SQLite and a file without any structure, on the same file system:
// VELAN_BENCHMARK_FOLDER, or /var/tmp.
#include <benchmark/benchmark.h>
#include <leveldb/db.h>
#include <leveldb/iterator.h>
#include <lmdb.h>
#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <string>

#include "velan/base/ByteOrder.h"
#include "velan/base/FunctionRef.h"
#include "velan/storage/BlockStorage.h"
#include "velan/text/digest/Checksums.h"

namespace velan {
namespace {

// The arguments: bytes of a block; whether to compress, or to synchronise after each block.
constexpr int64_t kReadBytes = 16 << 20;

std::string folder() {
  const char* parent = std::getenv("VELAN_BENCHMARK_FOLDER");
  return std::string(parent ? parent : "/var/tmp") + "/velan-storage-benchmark";
}

class Folder {
 public:
  Folder() {
    std::filesystem::remove_all(folder());
    std::filesystem::create_directories(folder());
  }
  ~Folder() { std::filesystem::remove_all(folder()); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
};

// Words of a small vocabulary: about as compressible as prose.
std::string textOf(size_t length) {
  std::mt19937 random(1);
  std::string text;
  while (text.size() < length) {
    for (unsigned word = static_cast<unsigned>(random()) % 2000 + 17; word > 0; word /= 7) {
      text += static_cast<char>('a' + word % 7 * 3);
    }
    text += ' ';
  }
  text.resize(length);
  return text;
}

struct Velan {
  explicit Velan(bool compress) : storage(BlockStorage::blockStorageForUpdatingAtPath(path())) {
    storage->setCompressed(compress);
  }
  static String path() { return String::fromUTF8(folder() + "/blocks"); }
  bool append(const std::string& text) {
    return storage->appendBlock(Data::withBytesNoCopy(const_cast<char*>(text.data()), text.size(), false));
  }
  bool synchronize() { return storage->synchronizeFile(); }
  size_t readAll() {
    size_t sum = 0;
    storage->seekToFileOffset(0);
    while (const Data data = storage->nextAvailableBlock()) sum += data.length();
    return sum;
  }
  std::unique_ptr<BlockStorage> storage;
};

struct LevelDB {
  explicit LevelDB(bool compress) {
    leveldb::Options options;
    options.create_if_missing = true;
    options.compression = compress ? leveldb::kSnappyCompression : leveldb::kNoCompression;
    leveldb::DB* opened = nullptr;
    leveldb::DB::Open(options, folder() + "/leveldb", &opened);
    database.reset(opened);
  }
  bool put(const std::string& text, bool sync) {
    leveldb::WriteOptions options;
    options.sync = sync;
    const uint64_t key = velan::byteSwapped(count++);
    return database->Put(options, leveldb::Slice(reinterpret_cast<const char*>(&key), sizeof key), text).ok();
  }
  bool append(const std::string& text) { return put(text, false); }
  bool appendAndSynchronize(const std::string& text) { return put(text, true); }
  size_t readAll() {
    leveldb::ReadOptions options;
    options.verify_checksums = true;
    size_t sum = 0;
    const std::unique_ptr<leveldb::Iterator> iterator(database->NewIterator(options));
    for (iterator->SeekToFirst(); iterator->Valid(); iterator->Next()) {
      const std::string copy = iterator->value().ToString();
      benchmark::DoNotOptimize(copy.data());
      sum += copy.size();
    }
    return sum;
  }
  std::unique_ptr<leveldb::DB> database;
  uint64_t count = 0;
};

// A transaction for each block, as for the others. It does not compress, and has no checksums: what is read goes
// through ours.
struct LMDB {
  explicit LMDB(bool synchronous) {
    mdb_env_create(&environment);
    mdb_env_set_mapsize(environment, size_t{16} << 30);
    std::filesystem::create_directories(folder() + "/lmdb");
    mdb_env_open(environment, (folder() + "/lmdb").c_str(), synchronous ? 0 : MDB_NOSYNC, 0644);
  }
  ~LMDB() { mdb_env_close(environment); }
  LMDB(const LMDB&) = delete;
  LMDB& operator=(const LMDB&) = delete;
  bool append(const std::string& text) {
    MDB_txn* transaction = nullptr;
    MDB_dbi table = 0;
    uint64_t key = velan::byteSwapped(count++);
    MDB_val name{sizeof key, &key};
    MDB_val value{text.size(), const_cast<char*>(text.data())};
    return mdb_txn_begin(environment, nullptr, 0, &transaction) == 0 &&
           mdb_dbi_open(transaction, nullptr, 0, &table) == 0 &&
           mdb_put(transaction, table, &name, &value, MDB_APPEND) == 0 && mdb_txn_commit(transaction) == 0;
  }
  size_t readAll() {
    MDB_txn* transaction = nullptr;
    MDB_cursor* cursor = nullptr;
    MDB_dbi table = 0;
    mdb_txn_begin(environment, nullptr, MDB_RDONLY, &transaction);
    mdb_dbi_open(transaction, nullptr, 0, &table);
    mdb_cursor_open(transaction, table, &cursor);
    size_t sum = 0;
    MDB_val key, value;
    while (mdb_cursor_get(cursor, &key, &value, MDB_NEXT) == 0) {
      const std::string copy(static_cast<const char*>(value.mv_data), value.mv_size);
      benchmark::DoNotOptimize(CRC32(copy.data(), copy.size()));
      sum += copy.size();
    }
    mdb_cursor_close(cursor);
    mdb_txn_abort(transaction);
    return sum;
  }
  MDB_env* environment = nullptr;
  uint64_t count = 0;
};

// A transaction for each block, written ahead and not synchronised. It has no checksums, either.
struct SQLite {
  SQLite() {
    sqlite3_open((folder() + "/sqlite").c_str(), &database);
    for (const char* statement : {"PRAGMA journal_mode=WAL", "PRAGMA synchronous=OFF",
                                  "CREATE TABLE blocks (number INTEGER PRIMARY KEY, bytes BLOB)"}) {
      sqlite3_exec(database, statement, nullptr, nullptr, nullptr);
    }
    sqlite3_prepare_v2(database, "INSERT INTO blocks (bytes) VALUES (?)", -1, &insert, nullptr);
    sqlite3_prepare_v2(database, "SELECT bytes FROM blocks ORDER BY number", -1, &select, nullptr);
  }
  ~SQLite() {
    sqlite3_finalize(insert);
    sqlite3_finalize(select);
    sqlite3_close(database);
  }
  SQLite(const SQLite&) = delete;
  SQLite& operator=(const SQLite&) = delete;
  bool append(const std::string& text) {
    sqlite3_bind_blob(insert, 1, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
    const bool done = sqlite3_step(insert) == SQLITE_DONE;
    sqlite3_reset(insert);
    return done;
  }
  size_t readAll() {
    size_t sum = 0;
    while (sqlite3_step(select) == SQLITE_ROW) {
      const std::string copy(static_cast<const char*>(sqlite3_column_blob(select, 0)),
                             static_cast<size_t>(sqlite3_column_bytes(select, 0)));
      benchmark::DoNotOptimize(CRC32(copy.data(), copy.size()));
      sum += copy.size();
    }
    sqlite3_reset(select);
    return sum;
  }
  sqlite3* database = nullptr;
  sqlite3_stmt* insert = nullptr;
  sqlite3_stmt* select = nullptr;
};

// What is written lies in a buffer of the process first, of 64 KB or of nothing. There are no checksums.
struct RawFile {
  explicit RawFile(size_t buffered) : file(std::fopen((folder() + "/raw").c_str(), "wb")) {
    std::setvbuf(file, nullptr, buffered ? _IOFBF : _IONBF, buffered);
  }
  ~RawFile() { std::fclose(file); }
  RawFile(const RawFile&) = delete;
  RawFile& operator=(const RawFile&) = delete;
  bool append(const std::string& text) { return std::fwrite(text.data(), 1, text.size(), file) == text.size(); }
  std::FILE* file;
};

template <typename Append>
void measureAppending(benchmark::State& state, Append append) {
  const std::string text = textOf(static_cast<size_t>(state.range(0)));
  for (auto _ : state) {
    if (!append(text)) state.SkipWithError("append");
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

template <typename Store>
void appendAll(benchmark::State& state, Store& store) {
  const std::string text = textOf(static_cast<size_t>(state.range(0)));
  for (int64_t i = 0; i < kReadBytes / state.range(0); ++i) {
    if (!store.append(text)) state.SkipWithError("append");
  }
}

void measurePasses(benchmark::State& state, FunctionRef<size_t()> read) {
  for (auto _ : state) {
    if (read() != size_t{kReadBytes}) state.SkipWithError("read");
  }
  state.SetBytesProcessed(state.iterations() * kReadBytes);
  state.SetItemsProcessed(state.iterations() * kReadBytes / state.range(0));
}

// Again and again from a store that stays open: what is mapped is there from the second time on.
template <typename Store>
void measureReading(benchmark::State& state, Store& store) {
  appendAll(state, store);
  measurePasses(state, [&] { return store.readAll(); });
}

// From a store that is opened each time, as those do who read what another process has written.
template <typename Store, typename... Arguments>
void measureOpening(benchmark::State& state, Arguments... arguments) {
  const Folder made;
  appendAll(state, *std::make_unique<Store>(arguments...));
  measurePasses(state, [&] { return std::make_unique<Store>(arguments...)->readAll(); });
}

void BM_AppendVelan(benchmark::State& state) {
  const Folder made;
  Velan store(state.range(1) != 0);
  measureAppending(state, [&](const std::string& text) { return store.append(text); });
}
void BM_AppendLevelDB(benchmark::State& state) {
  const Folder made;
  LevelDB store(state.range(1) != 0);
  measureAppending(state, [&](const std::string& text) { return store.append(text); });
}
void BM_AppendLMDB(benchmark::State& state) {
  const Folder made;
  LMDB store(false);
  measureAppending(state, [&](const std::string& text) { return store.append(text); });
}
void BM_AppendSQLite(benchmark::State& state) {
  const Folder made;
  SQLite store;
  measureAppending(state, [&](const std::string& text) { return store.append(text); });
}
void BM_AppendRaw(benchmark::State& state) {
  const Folder made;
  RawFile store(64 << 10);
  measureAppending(state, [&](const std::string& text) { return store.append(text); });
}
// What each block costs at least when it is given to the system at once.
void BM_AppendRawEach(benchmark::State& state) {
  const Folder made;
  RawFile store(0);
  measureAppending(state, [&](const std::string& text) { return store.append(text); });
}
void BM_AppendSyncVelan(benchmark::State& state) {
  const Folder made;
  Velan store(false);
  measureAppending(state, [&](const std::string& text) { return store.append(text) && store.synchronize(); });
}
void BM_AppendSyncLevelDB(benchmark::State& state) {
  const Folder made;
  LevelDB store(false);
  measureAppending(state, [&](const std::string& text) { return store.appendAndSynchronize(text); });
}
void BM_AppendSyncLMDB(benchmark::State& state) {
  const Folder made;
  LMDB store(true);
  measureAppending(state, [&](const std::string& text) { return store.append(text); });
}
void BM_ReadVelan(benchmark::State& state) {
  const Folder made;
  Velan store(state.range(1) != 0);
  measureReading(state, store);
}
void BM_ReadLevelDB(benchmark::State& state) {
  const Folder made;
  LevelDB store(state.range(1) != 0);
  measureReading(state, store);
}
void BM_ReadLMDB(benchmark::State& state) {
  const Folder made;
  LMDB store(false);
  measureReading(state, store);
}
void BM_ReadSQLite(benchmark::State& state) {
  const Folder made;
  SQLite store;
  measureReading(state, store);
}

void BM_OpenAndReadVelan(benchmark::State& state) { measureOpening<Velan>(state, false); }
void BM_OpenAndReadLevelDB(benchmark::State& state) { measureOpening<LevelDB>(state, false); }
void BM_OpenAndReadLMDB(benchmark::State& state) { measureOpening<LMDB>(state, false); }
void BM_OpenAndReadSQLite(benchmark::State& state) { measureOpening<SQLite>(state); }

#define VELAN_SIZES ArgsProduct({{1 << 10, 4 << 10, 64 << 10}, {0, 1}})
#define VELAN_PLAIN_SIZES ArgsProduct({{1 << 10, 4 << 10, 64 << 10}, {0}})
// A fixed number of appends: otherwise the fastest fills the disk.
BENCHMARK(BM_AppendVelan)->VELAN_SIZES->Iterations(4000);
BENCHMARK(BM_AppendLevelDB)->VELAN_SIZES->Iterations(4000);
BENCHMARK(BM_AppendLMDB)->VELAN_PLAIN_SIZES->Iterations(4000);
BENCHMARK(BM_AppendSQLite)->VELAN_PLAIN_SIZES->Iterations(4000);
BENCHMARK(BM_AppendRaw)->VELAN_PLAIN_SIZES->Iterations(4000);
BENCHMARK(BM_AppendRawEach)->VELAN_PLAIN_SIZES->Iterations(4000);
BENCHMARK(BM_AppendSyncVelan)->VELAN_PLAIN_SIZES->Iterations(300)->UseRealTime();
BENCHMARK(BM_AppendSyncLevelDB)->VELAN_PLAIN_SIZES->Iterations(300)->UseRealTime();
BENCHMARK(BM_AppendSyncLMDB)->VELAN_PLAIN_SIZES->Iterations(300)->UseRealTime();
BENCHMARK(BM_ReadVelan)->VELAN_SIZES;
BENCHMARK(BM_ReadLevelDB)->VELAN_SIZES;
BENCHMARK(BM_ReadLMDB)->VELAN_PLAIN_SIZES;
BENCHMARK(BM_ReadSQLite)->VELAN_PLAIN_SIZES;
BENCHMARK(BM_OpenAndReadVelan)->VELAN_PLAIN_SIZES;
BENCHMARK(BM_OpenAndReadLevelDB)->VELAN_PLAIN_SIZES;
BENCHMARK(BM_OpenAndReadLMDB)->VELAN_PLAIN_SIZES;
BENCHMARK(BM_OpenAndReadSQLite)->VELAN_PLAIN_SIZES;

}  // namespace
}  // namespace velan
