// One use of a prepared statement: bind, step through the rows, read the
// columns. The statement is reset and its bindings cleared when the query
// goes, so the connection's cached statement is ready for the next use.
//
//   CKWSqlQuery query(connection, kSelectName);
//   query.Bind(1, id);
//   if (query.Step() == SQLITE_ROW) name = query.Bytes(0);
#pragma once

#include "CKWSqliteConnection.h"

#include <sqlite3.h>

#include <cstdint>
#include <string>
#include <string_view>

class CKWSqlQuery {
public:
    // sql as for CKWSqliteConnection::Statement. When it cannot be prepared,
    // every Step gives the reason.
    CKWSqlQuery(CKWSqliteConnection& connection, const char* sql)
        : m_statement(connection.Statement(sql)),
          m_prepareError(m_statement != nullptr ? SQLITE_OK : connection.LastError()) {
        if (m_statement == nullptr && m_prepareError == SQLITE_OK) {
            m_prepareError = SQLITE_ERROR;
        }
    }
    ~CKWSqlQuery() {
        if (m_statement != nullptr) {
            sqlite3_reset(m_statement);
            sqlite3_clear_bindings(m_statement);
        }
    }
    CKWSqlQuery(const CKWSqlQuery&) = delete;
    CKWSqlQuery& operator=(const CKWSqlQuery&) = delete;

    void Bind(int index, std::int64_t value) { sqlite3_bind_int64(m_statement, index, value); }
    // The bytes must outlive the query; they are not copied. An empty text
    // is never NULL.
    void BindText(int index, std::string_view text) {
        sqlite3_bind_text(m_statement, index, text.empty() ? "" : text.data(),
                          static_cast<int>(text.size()), SQLITE_STATIC);
    }
    // A zero-length blob, never NULL, when size is 0.
    void BindBlob(int index, const void* data, std::size_t size) {
        if (size == 0) {
            sqlite3_bind_zeroblob(m_statement, index, 0);
        } else {
            sqlite3_bind_blob64(m_statement, index, data, size, SQLITE_STATIC);
        }
    }

    // SQLITE_ROW, SQLITE_DONE or an error code.
    int Step() { return m_statement != nullptr ? sqlite3_step(m_statement) : m_prepareError; }
    // Runs a statement that returns no rows: SQLITE_OK or an error code.
    int Run() {
        const int result = Step();
        return result == SQLITE_DONE || result == SQLITE_ROW ? SQLITE_OK : result;
    }

    std::int64_t Integer(int column) const { return sqlite3_column_int64(m_statement, column); }
    // A text or blob column's bytes.
    std::string Bytes(int column) const {
        const void* data = sqlite3_column_blob(m_statement, column);
        const int size = sqlite3_column_bytes(m_statement, column);
        return data != nullptr ? std::string(static_cast<const char*>(data), size) : std::string();
    }

private:
    sqlite3_stmt* m_statement;
    int m_prepareError;
};
