// The project file, format 1: an SQLite database of these tables and nothing else. Reader and
// writer share this description; docs/reference/workbook-format.md explains it to people who read or edit
// projects with other tools.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <span>
#include <string_view>

namespace brenvolt {

static_assert(std::endian::native == std::endian::little && std::numeric_limits<double>::is_iec559,
              "columns are copied between file and memory as they are");

// "BRVW", in the header field that tells the databases of different applications apart.
inline constexpr std::uint32_t kWorkbookApplicationId = 0x42525657;

// Values per chunk of a column: 1 MiB.
inline constexpr std::size_t kChunkValues = std::size_t{1} << 17;

// A table whose definition in the file must be exactly this one: neither more columns nor computed ones.
struct TableDefinition {
  std::string_view name;
  std::string_view sql;
};

inline constexpr std::array kWorkbookTables = {
    TableDefinition{"sheet",
                    "CREATE TABLE sheet(\n"
                    "  id INTEGER PRIMARY KEY,  -- sheets stand in this order\n"
                    "  name TEXT NOT NULL UNIQUE,\n"
                    "  kind TEXT NOT NULL,  -- data or matrix\n"
                    "  title TEXT NOT NULL,\n"
                    "  header TEXT NOT NULL,  -- heading of the case names\n"
                    "  cases INTEGER NOT NULL,\n"
                    "  cases_numbered INTEGER NOT NULL,  -- 1: the cases are named 1, 2, ...\n"
                    "  weight_variable INTEGER REFERENCES variable(id) ON DELETE SET NULL,\n"
                    "  selection_enabled INTEGER NOT NULL,\n"
                    "  selection_condition TEXT NOT NULL,\n"
                    "  selection_accepted BLOB  -- one byte per case, or NULL\n"
                    ")"},
    TableDefinition{"variable",
                    "CREATE TABLE variable(\n"
                    "  id INTEGER PRIMARY KEY,\n"
                    "  sheet INTEGER NOT NULL REFERENCES sheet(id) ON DELETE CASCADE,\n"
                    "  position INTEGER NOT NULL,  -- variables of a sheet stand in this order\n"
                    "  name TEXT NOT NULL,\n"
                    "  type TEXT NOT NULL,  -- numeric or text\n"
                    "  missing_code REAL,  -- NULL: only NaN is missing\n"
                    "  checksum INTEGER,  -- of the values; NULL: not checked\n"
                    "  UNIQUE(sheet, position)\n"
                    ")"},
    TableDefinition{"column_chunk",
                    "CREATE TABLE column_chunk(\n"
                    "  id INTEGER PRIMARY KEY,\n"
                    "  variable INTEGER NOT NULL REFERENCES variable(id) ON DELETE CASCADE,\n"
                    "  position INTEGER NOT NULL,  -- 1, 2, ...\n"
                    "  doubles BLOB NOT NULL,  -- IEEE 754 binary64, little-endian\n"
                    "  UNIQUE(variable, position)\n"
                    ")"},
    TableDefinition{"label",
                    "CREATE TABLE label(\n"
                    "  variable INTEGER NOT NULL REFERENCES variable(id) ON DELETE CASCADE,\n"
                    "  value REAL NOT NULL,\n"
                    "  text TEXT NOT NULL,\n"
                    "  PRIMARY KEY(variable, value)\n"
                    ") WITHOUT ROWID"},
    TableDefinition{"property",
                    "CREATE TABLE property(\n"
                    "  variable INTEGER NOT NULL REFERENCES variable(id) ON DELETE CASCADE,\n"
                    "  position INTEGER NOT NULL,  -- properties of a variable stand in this order\n"
                    "  key TEXT NOT NULL,\n"
                    "  value TEXT NOT NULL,\n"
                    "  PRIMARY KEY(variable, position),\n"
                    "  UNIQUE(variable, key)\n"
                    ") WITHOUT ROWID"},
    TableDefinition{"case_name",
                    "CREATE TABLE case_name(\n"
                    "  sheet INTEGER NOT NULL REFERENCES sheet(id) ON DELETE CASCADE,\n"
                    "  position INTEGER NOT NULL,  -- 1, 2, ...: every case or none\n"
                    "  name TEXT NOT NULL,\n"
                    "  PRIMARY KEY(sheet, position)\n"
                    ") WITHOUT ROWID"},
};

// For people only: properties by the names of sheet and variable, to read and to edit. The program uses
// neither view nor triggers.
inline constexpr char kWorkbookConveniences[] =
    "CREATE VIEW variable_property(sheet, variable, key, value) AS\n"
    "  SELECT sheet.name, variable.name, property.key, property.value\n"
    "  FROM property JOIN variable ON variable.id = property.variable JOIN sheet ON sheet.id = "
    "variable.sheet\n"
    "  ORDER BY sheet.id, variable.position, property.position;\n"
    "CREATE TRIGGER variable_property_update INSTEAD OF UPDATE ON variable_property BEGIN\n"
    "  UPDATE property SET key = NEW.key, value = NEW.value WHERE key = OLD.key AND variable IN\n"
    "    (SELECT variable.id FROM variable JOIN sheet ON sheet.id = variable.sheet\n"
    "     WHERE sheet.name = OLD.sheet AND variable.name = OLD.variable);\n"
    "END;\n"
    "CREATE TRIGGER variable_property_insert INSTEAD OF INSERT ON variable_property BEGIN\n"
    "  INSERT INTO property(variable, position, key, value)\n"
    "    SELECT variable.id, (SELECT coalesce(max(position), 0) + 1 FROM property WHERE property.variable = "
    "variable.id),\n"
    "           NEW.key, NEW.value\n"
    "    FROM variable JOIN sheet ON sheet.id = variable.sheet\n"
    "    WHERE sheet.name = NEW.sheet AND variable.name = NEW.variable;\n"
    "END;\n"
    "CREATE TRIGGER variable_property_delete INSTEAD OF DELETE ON variable_property BEGIN\n"
    "  DELETE FROM property WHERE key = OLD.key AND variable IN\n"
    "    (SELECT variable.id FROM variable JOIN sheet ON sheet.id = variable.sheet\n"
    "     WHERE sheet.name = OLD.sheet AND variable.name = OLD.variable);\n"
    "END;\n";

// Where the values of a variable stand: the id of its row in `variable`, and their checksum.
struct StoredColumn {
  std::int64_t variable = 0;
  std::int64_t checksum = 0;
};

// Columns that are in a file, by content stamp. Copies of one variable share a stamp, and each has its own
// column.
using StoredColumns = std::multimap<std::uint64_t, StoredColumn>;

// A 64-bit checksum of the bits of the values and their number. It tells accidental damage and different
// columns apart; it does not protect against intent.
std::int64_t ColumnChecksum(std::span<const double> values);

// What the first 100 bytes of the file say (sqlite.org/fileformat2.html, section 1.3).
struct WorkbookHeader {
  bool isDatabase = false;
  bool writeAheadLog = false;  // the counters below may lag behind
  std::uint64_t size = 0;      // bytes that the file should have
  std::uint32_t changeCounter = 0;
  std::uint32_t textEncoding = 0;
  std::uint32_t formatVersion = 0;
  std::uint32_t applicationId = 0;

  bool IsWorkbook() const { return isDatabase && applicationId == kWorkbookApplicationId; }
};

class Connection;
WorkbookHeader ReadWorkbookHeader(Connection& connection);

}  // namespace brenvolt
