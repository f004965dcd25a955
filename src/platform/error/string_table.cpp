// SPDX-License-Identifier: MIT
#include "platform/error/string_table.h"

#include "platform/log.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <sstream>

namespace plyra {
namespace {

/// Reads the tokens of a ".strings" text: quoted strings, '=' and ';'.
/// Threads: the parsing thread.
class StringsScanner {
public:
    explicit StringsScanner(std::string_view text)
        : m_text(text)
    {
    }

    /// Skips blanks and comments; false at the end of the text or at an open comment.
    bool skipToToken()
    {
        while (m_pos < m_text.size()) {
            const char c = m_text[m_pos];
            if (c == '\n')
                ++m_line;
            if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
                ++m_pos;
            } else if (m_text.substr(m_pos, 2) == "//") {
                m_pos = std::min(m_text.find('\n', m_pos), m_text.size());
            } else if (m_text.substr(m_pos, 2) == "/*") {
                const size_t end = m_text.find("*/", m_pos + 2);
                if (end == std::string_view::npos)
                    return fail("unterminated comment");
                for (size_t i = m_pos; i < end; ++i)
                    m_line += m_text[i] == '\n' ? 1 : 0;
                m_pos = end + 2;
            } else {
                return true;
            }
        }
        return false;
    }

    bool atEnd() const { return m_pos >= m_text.size(); }

    bool expect(char symbol)
    {
        if (!skipToToken() || m_text[m_pos] != symbol)
            return fail(std::string("expected '") + symbol + "'");
        ++m_pos;
        return true;
    }

    bool quoted(std::string& out)
    {
        if (!skipToToken() || m_text[m_pos] != '"')
            return fail("expected a quoted text");
        out.clear();
        for (++m_pos; m_pos < m_text.size(); ++m_pos) {
            const char c = m_text[m_pos];
            if (c == '"') {
                ++m_pos;
                return true;
            }
            if (c == '\n')
                ++m_line;
            if (c != '\\') {
                out += c;
                continue;
            }
            if (++m_pos >= m_text.size())
                break;
            const char escaped = m_text[m_pos];
            out += escaped == 'n' ? '\n' : escaped == 't' ? '\t' : escaped;
        }
        return fail("unterminated quoted text");
    }

    const std::string& error() const { return m_error; }

private:
    bool fail(const std::string& why)
    {
        if (m_error.empty())
            m_error = formatString("line %d: %s", m_line, why.c_str());
        m_pos = m_text.size();
        return false;
    }

    std::string_view m_text;
    size_t m_pos = 0;
    int m_line = 1;
    std::string m_error;
};

std::filesystem::path findErrorsFile()
{
    namespace fs = std::filesystem;
    std::error_code ignored;
    if (const char* dir = std::getenv("PLYRA_RESOURCE_DIR")) {
        if (fs::is_regular_file(fs::path(dir) / "Errors.strings", ignored))
            return fs::path(dir) / "Errors.strings";
    }
    fs::path folder = fs::read_symlink("/proc/self/exe", ignored).parent_path();
    for (int up = 0; up < 4 && !folder.empty(); ++up, folder = folder.parent_path()) {
        const fs::path candidate = folder / "resources" / "Errors.strings";
        if (fs::is_regular_file(candidate, ignored))
            return candidate;
    }
    const fs::path besideProgram = fs::read_symlink("/proc/self/exe", ignored).parent_path().parent_path() / "share" / "plyra" / "Errors.strings";
    if (fs::is_regular_file(besideProgram, ignored))
        return besideProgram;
    const fs::path installed = "/usr/share/plyra/Errors.strings";
    return fs::is_regular_file(installed, ignored) ? installed : fs::path();
}

std::shared_ptr<const StringTable> loadErrorsTable()
{
    const std::filesystem::path path = findErrorsFile();
    if (path.empty())
        return std::make_shared<StringTable>();
    std::string error;
    std::optional<StringTable> table = StringTable::load(path.string(), &error);
    if (!table) {
        logLine(formatString("The Errors table is not used: %s", error.c_str()));
        return std::make_shared<StringTable>();
    }
    return std::make_shared<StringTable>(std::move(*table));
}

std::mutex& tableMutex()
{
    static std::mutex mutex;
    return mutex;
}

// Guarded by tableMutex(); made on first use.
std::shared_ptr<const StringTable> g_errorsTable;

} // namespace

StringTable::StringTable(std::map<std::string, std::string> entries)
    : m_entries(std::move(entries))
{
}

std::optional<StringTable> StringTable::parse(std::string_view text, std::string* error)
{
    StringsScanner scanner(text);
    std::map<std::string, std::string> entries;
    std::string key;
    std::string value;
    while (scanner.skipToToken()) {
        if (!scanner.quoted(key) || !scanner.expect('=') || !scanner.quoted(value) || !scanner.expect(';'))
            break;
        entries[key] = value;
    }
    if (!scanner.error().empty()) {
        if (error)
            *error = scanner.error();
        return std::nullopt;
    }
    return StringTable(std::move(entries));
}

std::optional<StringTable> StringTable::load(const std::string& path, std::string* error)
{
    std::error_code ignored;
    std::ifstream file;
    if (std::filesystem::is_regular_file(path, ignored))
        file.open(path, std::ios::binary);
    std::ostringstream contents;
    if (file)
        contents << file.rdbuf();
    if (!file.is_open() || file.bad()) {
        if (error)
            *error = formatString("could not read \"%s\"", path.c_str());
        return std::nullopt;
    }
    std::string parseError;
    std::optional<StringTable> table = parse(contents.str(), &parseError);
    if (!table && error)
        *error = formatString("\"%s\", %s", path.c_str(), parseError.c_str());
    return table;
}

std::string StringTable::lookup(const std::string& key) const
{
    const auto found = m_entries.find(key);
    return found == m_entries.end() ? key : found->second;
}

std::shared_ptr<const StringTable> errorsTable()
{
    std::lock_guard guard(tableMutex());
    if (!g_errorsTable)
        g_errorsTable = loadErrorsTable();
    return g_errorsTable;
}

void setErrorsTable(std::shared_ptr<const StringTable> table)
{
    std::lock_guard guard(tableMutex());
    g_errorsTable = table ? std::move(table) : std::make_shared<StringTable>();
}

} // namespace plyra
