// The input is a list of changes of a sound study file: of its bytes, or of its cells in ways that its tables
// forbid: wrong types, huge and negative numbers, hostile texts and blobs, missing and doubled rows. The
// tables look as they should when it is read.
#include <array>
#include <cstring>
#include <functional>
#include <limits>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/bytes.h"
#include "fuzz/study_reading.h"

namespace {

using banddesk::fuzz::Bytes;
using banddesk::fuzz::require;

struct Table {
  std::string name;
  std::vector<std::string> columns;
};

// The tables that a study has, with their columns.
std::vector<Table> tablesOf(sqlite3* database) {
  std::vector<Table> tables;
  const auto take = [](void* to, int, char** values, char**) {
    auto& all = *static_cast<std::vector<Table>*>(to);
    if (all.empty() || all.back().name != values[0]) all.push_back({values[0], {}});
    all.back().columns.emplace_back(values[1]);
    return 0;
  };
  sqlite3_exec(
      database,
      "SELECT t.name, c.name FROM sqlite_schema t, pragma_table_info(t.name) c WHERE t.type = 'table'", take,
      &tables, nullptr);
  require(!tables.empty(), "the study has no tables");
  return tables;
}

// As the file keeps it behind the fragments of a dye.
void appendCheckSum(std::string& blob) {
  std::uint32_t sum = 2166136261U;
  for (const char c : blob) sum = (sum ^ static_cast<unsigned char>(c)) * 16777619U;
  blob.append(reinterpret_cast<const char*>(&sum), sizeof sum);
}

void bindValue(sqlite3_stmt* statement, Bytes& bytes) {
  constexpr std::array<std::int64_t, 10> kNumbers{0,
                                                  1,
                                                  -1,
                                                  2,
                                                  9,
                                                  255,
                                                  65'536,
                                                  std::numeric_limits<std::int32_t>::max(),
                                                  std::numeric_limits<std::int32_t>::min(),
                                                  std::numeric_limits<std::int64_t>::max()};
  constexpr std::array<double, 6> kReals{0.5,   -1, 1e300, -0.0, std::numeric_limits<double>::infinity(),
                                         1e-300};
  constexpr std::array kTexts{"", "0", "-1", "-2", "6", "nan", "1e9", "-2147483648", "\xff\xfe", "%s%n"};
  const auto one = [&](const auto& values) {
    return values[static_cast<std::size_t>(bytes.upTo(static_cast<int>(values.size()) - 1))];
  };
  switch (bytes.upTo(6)) {
    case 0:
      sqlite3_bind_int64(statement, 1, one(kNumbers));
      break;
    case 1:
      sqlite3_bind_int64(statement, 1, static_cast<std::int64_t>(bytes.number(4)));
      break;
    case 2:
      sqlite3_bind_double(statement, 1, one(kReals));
      break;
    case 3:
      sqlite3_bind_text(statement, 1, one(kTexts), -1, SQLITE_STATIC);
      break;
    case 4: {
      const auto text = bytes.text(static_cast<std::size_t>(bytes.upTo(31)));
      sqlite3_bind_text(statement, 1, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
      break;
    }
    case 5: {
      std::string blob(bytes.text(static_cast<std::size_t>(bytes.upTo(63))));
      appendCheckSum(blob);
      sqlite3_bind_blob(statement, 1, blob.data(), static_cast<int>(blob.size()), SQLITE_TRANSIENT);
      break;
    }
    default:
      sqlite3_bind_null(statement, 1);
  }
}

void change(sqlite3* database, const std::vector<Table>& tables, Bytes& bytes) {
  const Table& table = tables[static_cast<std::size_t>(bytes.upTo(static_cast<int>(tables.size()) - 1))];
  const std::string& column =
      table.columns[static_cast<std::size_t>(bytes.upTo(static_cast<int>(table.columns.size()) - 1))];
  const std::string row = " LIMIT 1 OFFSET " + std::to_string(bytes.upTo(31));
  const int kind = bytes.upTo(9);
  const std::string sql = kind == 0   ? "DELETE FROM " + table.name + row
                          : kind == 1 ? "INSERT INTO " + table.name + " SELECT * FROM " + table.name + row
                          : kind == 2 ? "UPDATE " + table.name + " SET " + column + " = ?1"
                                      : "UPDATE " + table.name + " SET " + column + " = ?1" + row;
  sqlite3_stmt* statement = nullptr;
  require(sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK,
          sqlite3_errmsg(database));
  if (kind > 1) bindValue(statement, bytes);
  sqlite3_step(statement);
  sqlite3_finalize(statement);
}

void execute(sqlite3* database, const char* sql) {
  require(sqlite3_exec(database, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sqlite3_errmsg(database));
}

// A copy of a study in memory, to be closed by who asked for it.
sqlite3* opened(std::string_view file) {
  sqlite3* database = nullptr;
  require(sqlite3_open(":memory:", &database) == SQLITE_OK, "no database in memory");
  auto* const copy = static_cast<unsigned char*>(sqlite3_malloc64(file.size()));
  std::memcpy(copy, file.data(), file.size());
  const auto size = static_cast<sqlite3_int64>(file.size());
  require(sqlite3_deserialize(database, "main", copy, size, size,
                              SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_RESIZEABLE) == SQLITE_OK,
          "the study does not open");
  return database;
}

std::string closed(sqlite3* database) {
  sqlite3_int64 size = 0;
  unsigned char* const file = sqlite3_serialize(database, "main", &size, 0);
  require(file != nullptr, "the study gives no bytes");
  std::string bytes(reinterpret_cast<const char*>(file), static_cast<std::size_t>(size));
  sqlite3_free(file);
  sqlite3_close(database);
  return bytes;
}

// A study whose tables forbid nothing.
struct LooseStudy {
  LooseStudy() {
    sqlite3* database = opened(banddesk::fuzz::studyFile());
    tables = tablesOf(database);
    const auto take = [](void* to, int, char** values, char**) {
      static_cast<std::string*>(to)->append(values[0]);
      return 0;
    };
    sqlite3_exec(database,
                 "SELECT printf('UPDATE sqlite_schema SET sql = %Q WHERE name = %Q;', sql, name) FROM "
                 "sqlite_schema WHERE sql NOT NULL",
                 take, &restoring, nullptr);
    execute(
        database,
        "PRAGMA writable_schema = ON;"
        "UPDATE sqlite_schema SET sql = replace(replace(replace(sql, 'NOT NULL', ''), ') STRICT, ', ') '), "
        "') STRICT', ')')");
    bytes = closed(database);
  }

  std::vector<Table> tables;
  std::string restoring;  // what makes its tables look as they did
  std::string bytes;
};

std::string withOtherCells(Bytes& bytes) {
  static const LooseStudy study;
  sqlite3* database = opened(study.bytes);
  execute(database, "PRAGMA ignore_check_constraints = ON; PRAGMA writable_schema = ON; BEGIN");
  // A file is refused at the first fault, so that few changes try more than many.
  for (int changes = 0; changes < 6 && !bytes.isEmpty(); ++changes) change(database, study.tables, bytes);
  execute(database, (study.restoring + "COMMIT").c_str());
  return closed(database);
}

// Each edit is a place, a length and the new bytes; the file may be cut first.
std::string withOtherBytes(Bytes& bytes) {
  static const std::string sound = banddesk::fuzz::studyFile();
  std::string edited = sound;
  if (bytes.upTo(15) == 0) edited.resize(bytes.number(3) % edited.size());
  while (!bytes.isEmpty() && !edited.empty()) {
    const std::size_t at = bytes.number(3) % edited.size();
    const std::string_view patch = bytes.text(static_cast<std::size_t>(bytes.upTo(15)) + 1);
    edited.replace(at, std::min(patch.size(), edited.size() - at), patch);
  }
  return edited;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bytes bytes(data, size);
  const bool cells = bytes.upTo(1) == 1;
  // Pages cost most of the time and reach most of the program: a choice made by one byte would spread to all
  // inputs.
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const bool withPages = std::hash<std::string_view>{}(input) % 16 == 0;
  banddesk::fuzz::writeStudy(cells ? withOtherCells(bytes) : withOtherBytes(bytes));
  banddesk::fuzz::readStudy(withPages);
  return 0;
}
