// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace plyra {

/// A key-to-text table read from a ".strings" file: lines of `"key" = "text";` with
/// `/* */` and `//` comments and the escapes \" \\ \n \t in quoted texts, UTF-8.
/// Threads: immutable once made.
class StringTable {
public:
    StringTable() = default;
    explicit StringTable(std::map<std::string, std::string> entries);

    /// The table in `text`; none, with the line and the reason in `error`, when it is damaged.
    static std::optional<StringTable> parse(std::string_view text, std::string* error = nullptr);
    /// The table in the file at `path`; none, with the reason in `error`, when it cannot be read.
    static std::optional<StringTable> load(const std::string& path, std::string* error = nullptr);

    /// The text for the key, or the key itself when the table has no entry for it.
    std::string lookup(const std::string& key) const;
    bool contains(const std::string& key) const { return m_entries.count(key) > 0; }
    size_t size() const { return m_entries.size(); }

private:
    std::map<std::string, std::string> m_entries;
};

/// The application's "Errors" table. On first use it is read from "Errors.strings" in the
/// first of: $PLYRA_RESOURCE_DIR, "resources" beside the program or in one of its three
/// parent folders, /usr/share/plyra. Without it every lookup gives the key back; a damaged
/// file is logged and treated as missing.
/// Threads: any thread.
std::shared_ptr<const StringTable> errorsTable();
/// Replaces the "Errors" table (the application or a test installs its own).
void setErrorsTable(std::shared_ptr<const StringTable> table);

} // namespace plyra
