// A thin cover over SQLite's C interface: connections, statements and transactions end by themselves, and
// every failure is one Error that names the file and says why. It knows nothing of studies.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <sqlite3.h>
#include <string>
#include <string_view>

namespace banddesk::host::sqlite {

using Blob = std::span<const std::byte>;

class Database;

class Statement {
 public:
  // Binds the values in order and runs the statement to its end, as an insert or an update is run.
  template <class... Values>
  void run(const Values&... values) {
    begin(values...);
    finish();
  }
  // Binds the values in order; each next() gives a row until it answers false. A statement begun again drops
  // what was left of the rows.
  template <class... Values>
  void begin(const Values&... values) {
    reset();
    int position = 0;
    (bind(++position, values), ...);
  }
  bool next();

  // One value by its place, for rows that are bound field by field between begin() and finish().
  void bind(int position, std::int64_t value);
  void bind(int position, std::int32_t value) { bind(position, std::int64_t{value}); }
  void bind(int position, std::uint32_t value) { bind(position, std::int64_t{value}); }
  void bind(int position, bool value) { bind(position, std::int64_t{value}); }
  void bind(int position, double value);
  void bind(int position, std::string_view value);
  void bind(int position, const char* value) = delete;  // it would be a Boolean
  void bind(int position, Blob value);
  void bindNull(int position);
  void finish();

  // Of the row at hand, by the column's place from 0. A value of another type or beyond the range of its type
  // is an error: the file is damaged. Texts and blobs hold until the next row.
  std::int64_t number(int column) const;
  template <class Integer>
  Integer integer(int column) const {
    return static_cast<Integer>(
        within(column, std::numeric_limits<Integer>::min(), std::numeric_limits<Integer>::max()));
  }
  double real(int column) const;
  std::string_view text(int column) const;
  Blob blob(int column) const;
  bool isNull(int column) const { return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL; }

 private:
  friend class Database;
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };

  Statement(const Database& database, sqlite3_stmt* statement)
      : database_(&database), statement_(statement) {}
  void require(int column, int type) const;
  std::int64_t within(int column, std::int64_t least, std::int64_t most) const;
  void reset() { sqlite3_reset(statement_.get()); }
  void check(int code) const;

  const Database* database_;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

class Database {
 public:
  // `flags` are SQLITE_OPEN_...; the file is read at the first statement only. Errors name it by `shownAs`.
  // Without `locks` none are asked for, where the file system has none.
  Database(const std::string& file, int flags, std::string shownAs, bool locks = true);

  const std::string& file() const { return file_; }  // as errors name it
  void execute(const char* statements);
  // For ends, which have nobody to tell of a failure.
  void executeIfPossible(const char* statements) noexcept;
  Statement prepare(std::string_view statement) const;
  std::int64_t number(std::string_view query) const;  // the first value of the first row
  std::int64_t lastRowId() const { return sqlite3_last_insert_rowid(connection_.get()); }
  bool isReadOnly() const { return sqlite3_db_readonly(connection_.get(), "main") == 1; }
  // Whether another file, or none, lies now where this one was opened.
  bool hasMoved() const;
  // Gives back the room of what was taken out; outside of a transaction.
  void vacuum();
  // Makes the other, a new one, hold what this one holds.
  void copyTo(Database& other) const;
  bool isInTransaction() const { return sqlite3_get_autocommit(connection_.get()) == 0; }

  [[noreturn]] void fail(int code) const;
  // The file holds what no program of ours has written.
  [[noreturn]] void failDamaged(const std::string& what) const;

 private:
  void disarm();

  struct Close {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
  };

  std::string file_;
  std::unique_ptr<sqlite3, Close> connection_;
};

// Whole or not at all: what is not committed when it ends is taken back.
class Transaction {
 public:
  explicit Transaction(Database& database) : database_(database) { database_.execute("BEGIN IMMEDIATE"); }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction();

  // When it returns, the disk has it.
  void commit() { database_.execute("COMMIT"); }

 private:
  Database& database_;
};

}  // namespace banddesk::host::sqlite
