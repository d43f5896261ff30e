#include "host/store/sqlite.h"

#include <cstring>
#include <fmt/format.h>
#include <limits>
#include <utility>

#include "plugin/base/error.h"

namespace banddesk::host::sqlite {
namespace {

struct Cause {
  ErrorNumber number;
  std::string text;
};

// What the system said, where it is the system that refused.
std::string withSystemCause(const char* text, sqlite3* connection) {
  int cause = connection == nullptr ? 0 : sqlite3_system_errno(connection);
  if (cause == 0 && connection != nullptr)
    sqlite3_file_control(connection, "main", SQLITE_FCNTL_LAST_ERRNO, &cause);
  return cause == 0 ? std::string(text) : fmt::format("{}: {}", text, std::strerror(cause));
}

Cause causeOf(int code, sqlite3* connection) {
  if (code == SQLITE_READONLY_ROLLBACK || code == SQLITE_READONLY_RECOVERY)
    return {ErrorNumber::PermissionDenied,
            "a save was cut off, and only a program that may write the file and its folder can take it back"};
  switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return {ErrorNumber::PermissionDenied, "it is open in another program"};
    case SQLITE_FULL:
      return {ErrorNumber::DiskFull, "the disk is full"};
    case SQLITE_READONLY:
      return {ErrorNumber::PermissionDenied, "it cannot be written"};
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH:
      return {ErrorNumber::PermissionDenied, withSystemCause("it cannot be opened", connection)};
    case SQLITE_NOTADB:
      return {ErrorNumber::InvalidArgument, "it is no study"};
    case SQLITE_CORRUPT:
      return {ErrorNumber::InvalidArgument, "it is damaged or cut short"};
    case SQLITE_IOERR:
      return {ErrorNumber::DeviceIo, withSystemCause("it cannot be read or written", connection)};
    case SQLITE_NOMEM:
      return {ErrorNumber::OutOfMemory, "there is not enough memory"};
    default:
      return {ErrorNumber::Internal,
              connection == nullptr ? sqlite3_errstr(code) : sqlite3_errmsg(connection)};
  }
}

}  // namespace

void Statement::check(int code) const {
  if (code != SQLITE_OK) database_->fail(code);
}

bool Statement::next() {
  const int code = sqlite3_step(statement_.get());
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) database_->fail(code);
  reset();
  return false;
}

void Statement::finish() {
  while (next()) {
  }
}

void Statement::bind(int position, std::int64_t value) {
  check(sqlite3_bind_int64(statement_.get(), position, value));
}

void Statement::bind(int position, double value) {
  check(sqlite3_bind_double(statement_.get(), position, value));
}

// Not copied: what is bound lives until the statement has run. A null pointer would bind NULL.
void Statement::bind(int position, std::string_view value) {
  check(sqlite3_bind_text64(statement_.get(), position, value.empty() ? "" : value.data(), value.size(),
                            SQLITE_STATIC, SQLITE_UTF8));
}

void Statement::bind(int position, Blob value) {
  check(sqlite3_bind_blob64(statement_.get(), position, value.data(), value.size(), SQLITE_STATIC));
}

void Statement::bindNull(int position) { check(sqlite3_bind_null(statement_.get(), position)); }

// A study's tables are strict, but a file need not have been written by their rules.
void Statement::require(int column, int type) const {
  if (sqlite3_column_type(statement_.get(), column) != type)
    database_->failDamaged(
        fmt::format("a value of {} is of another type", sqlite3_column_name(statement_.get(), column)));
}

std::int64_t Statement::number(int column) const {
  require(column, SQLITE_INTEGER);
  return sqlite3_column_int64(statement_.get(), column);
}

std::int64_t Statement::within(int column, std::int64_t least, std::int64_t most) const {
  const std::int64_t value = number(column);
  if (value < least || value > most)
    database_->failDamaged(fmt::format("a number is out of its range ({})", value));
  return value;
}

double Statement::real(int column) const {
  require(column, SQLITE_FLOAT);
  return sqlite3_column_double(statement_.get(), column);
}

std::string_view Statement::text(int column) const {
  require(column, SQLITE_TEXT);
  const auto* const start = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
  if (start == nullptr) return {};
  return {start, static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column))};
}

Blob Statement::blob(int column) const {
  require(column, SQLITE_BLOB);
  const auto* const start = static_cast<const std::byte*>(sqlite3_column_blob(statement_.get(), column));
  if (start == nullptr) return {};
  return {start, static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column))};
}

// A file may come from anybody. What it holds is data: its triggers and views stay asleep, its schema calls
// no function with side effects, and the pages are looked at before they are trusted.
void Database::disarm() {
  sqlite3* const connection = connection_.get();
  const auto set = [&](int option, int value) { sqlite3_db_config(connection, option, value, nullptr); };
  set(SQLITE_DBCONFIG_DEFENSIVE, 1);
  set(SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0);
  set(SQLITE_DBCONFIG_ENABLE_TRIGGER, 0);
  set(SQLITE_DBCONFIG_ENABLE_VIEW, 0);
  set(SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0);
  sqlite3_limit(connection, SQLITE_LIMIT_ATTACHED, 0);
  execute("PRAGMA cell_size_check = ON; PRAGMA mmap_size = 0");
}

Database::Database(const std::string& file, int flags, std::string shownAs, bool locks)
    : file_(std::move(shownAs)) {
  sqlite3* connection = nullptr;
  const int code = sqlite3_open_v2(file.c_str(), &connection, flags | SQLITE_OPEN_EXRESCODE,
                                   locks ? nullptr : "unix-none");
  connection_.reset(connection);
  if (code != SQLITE_OK) fail(code);
  disarm();
}

// It needs to attach a database of its own.
void Database::vacuum() {
  const int former = sqlite3_limit(connection_.get(), SQLITE_LIMIT_ATTACHED, 1);
  const std::shared_ptr<void> restored(
      nullptr, [&](void*) { sqlite3_limit(connection_.get(), SQLITE_LIMIT_ATTACHED, former); });
  execute("VACUUM");
}

void Database::execute(const char* statements) {
  const int code = sqlite3_exec(connection_.get(), statements, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) fail(code);
}

void Database::executeIfPossible(const char* statements) noexcept {
  sqlite3_exec(connection_.get(), statements, nullptr, nullptr, nullptr);
}

Statement Database::prepare(std::string_view statement) const {
  sqlite3_stmt* prepared = nullptr;
  const int code = sqlite3_prepare_v2(connection_.get(), statement.data(), static_cast<int>(statement.size()),
                                      &prepared, nullptr);
  if (code != SQLITE_OK) fail(code);
  return {*this, prepared};
}

std::int64_t Database::number(std::string_view query) const {
  Statement statement = prepare(query);
  return statement.next() ? statement.number(0) : 0;
}

bool Database::hasMoved() const {
  int moved = 0;
  const int code = sqlite3_file_control(connection_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  return code == SQLITE_OK && moved != 0;
}

void Database::copyTo(Database& other) const {
  sqlite3_backup* const copying =
      sqlite3_backup_init(other.connection_.get(), "main", connection_.get(), "main");
  if (copying == nullptr) other.fail(sqlite3_extended_errcode(other.connection_.get()));
  sqlite3_backup_step(copying, -1);
  const int code = sqlite3_backup_finish(copying);
  if (code != SQLITE_OK) other.fail(code);
}

void Database::fail(int code) const {
  const Cause cause = causeOf(code, connection_.get());
  raise(cause.number, "Store", fmt::format("{}: {}", file_, cause.text));
}

void Database::failDamaged(const std::string& what) const {
  raise(ErrorNumber::InvalidArgument, "Store", fmt::format("{}: it is damaged: {}", file_, what));
}

// Some failures end the transaction by themselves. Should the rollback fail, it leaves the journal, which the
// next opening plays back.
Transaction::~Transaction() {
  if (database_.isInTransaction()) database_.executeIfPossible("ROLLBACK");
}

}  // namespace banddesk::host::sqlite
