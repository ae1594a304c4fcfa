#include <algorithm>

#include "command/machine/forms/readers.h"
#include "edid/layout.h"

namespace {

constexpr std::size_t kRowSize = 16;  // bytes in a row of hexdump and i2cdump

struct TRow {
  std::size_t offset;
  std::string bytes;
};

/// How a program writes its rows.
struct TDialect {
  std::size_t offsetDigits;
  std::string_view afterOffset;
  std::string_view beforeCharacters;
  std::size_t maxBytes;  // in a row
  bool isOfMemory;       // it always prints 256 bytes, however long the EDID is
};

constexpr TDialect kDialects[] = {
    {8, ":", "  ", kMaxEdidSize, false},  // xxd
    {8, " ", "|", kRowSize, false},       // hexdump -C
    {2, ":", "    ", kRowSize, true},     // i2cdump
};

/// The row may have no bytes: hexdump's last row has none.
std::optional<TRow> ReadRow(std::string_view line, const TDialect& dialect) {
  const std::optional<std::size_t> offset = ReadHexNumber(line.substr(0, dialect.offsetDigits));
  if (!offset || line.size() < dialect.offsetDigits) return std::nullopt;
  line.remove_prefix(dialect.offsetDigits);
  if (!line.empty() && !BeginsWith(line, dialect.afterOffset)) return std::nullopt;
  TRow row = {*offset, ""};
  line = line.substr(std::min(dialect.afterOffset.size(), line.size()));
  line = line.substr(0, line.find(dialect.beforeCharacters));
  while (!(line = Trim(line)).empty() && row.bytes.size() < dialect.maxBytes) {
    // i2cdump writes XX for a byte that it could not read.
    if (!AppendHex(row.bytes, TakeUntil(line, " "))) break;
  }
  return row;
}

class TDump {
 public:
  explicit TDump(const TDialect& dialect) : m_dialect(dialect) {}

  std::optional<TFoundMachine> Read(std::string_view text) {
    TLines lines(text);
    for (std::string_view line; lines.Take(line);) {
      if (line == "*") m_isRepeated = true;
      if (std::optional<TRow> row = ReadRow(line, m_dialect)) Take(std::move(*row));
    }
    End();
    if (!m_hasRows) return std::nullopt;
    return std::move(m_machine);
  }

 private:
  void Take(TRow row) {
    if (row.offset == 0 && !row.bytes.empty()) Begin();
    if (!m_hasRows) return;
    if (m_isRepeated) Repeat(row.offset);
    m_isRepeated = false;
    if (row.offset != m_bytes.size()) m_isBroken = true;
    if (!m_isBroken) m_bytes += row.bytes;
    m_last = std::move(row.bytes);
  }

  void Begin() {
    End();
    m_hasRows = true;
    m_isBroken = m_isRepeated = false;
  }

  /// Repeats the last row up to `end`: a star stands for rows equal to the one before it.
  void Repeat(std::size_t end) {
    if (end > kMaxEdidSize || m_last.empty()) return;
    while (m_bytes.size() < end) m_bytes += m_last;
  }

  void End() {
    if (m_bytes.empty()) return;
    if (m_isBroken) m_machine.Add({"", "", "lacks the row at offset " + std::to_string(m_bytes.size())});
    if (!m_isBroken && m_dialect.isOfMemory) m_bytes.resize(std::min(m_bytes.size(), GetPromisedSize(m_bytes)));
    if (!m_isBroken) m_machine.AddEdids(m_bytes);
    m_bytes.clear();
  }

  const TDialect& m_dialect;
  TFoundMachine m_machine;
  std::string m_bytes;  // of the dump that is being read
  std::string m_last;   // the last row
  bool m_hasRows = false;
  bool m_isRepeated = false;
  bool m_isBroken = false;
};

}  // namespace

std::optional<TFoundMachine> ReadHexDump(std::string_view text) {
  for (const TDialect& dialect : kDialects) {
    if (std::optional<TFoundMachine> machine = TDump(dialect).Read(text)) return machine;
  }
  return std::nullopt;
}
