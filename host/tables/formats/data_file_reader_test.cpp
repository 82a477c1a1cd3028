#include "host/tables/formats/data_file_reader.h"

#include <archive.h>
#include <archive_entry.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include "host/base/files/mapped_file.h"
#include "host/tables/csv_layout.h"
#include "host/tables/csv_reader.h"
#include "host/tables/formats/packages_reader.h"
#include "host/tables/office/zip_content.h"

namespace brenvolt {
namespace {

const std::string kPackages = BRENVOLT_SOURCE_DIR "/host/tables/formats/reference/packages/";

// The cells of a column: numbers, texts in brackets, "-" where a value is missing.
std::string Shown(const Spreadsheet& sheet, const std::string& name, std::size_t most = 4) {
  const Variable& variable = sheet.VariableAt(sheet.FindVariable(name).value());
  std::string text;
  for (std::size_t row = 0; row < std::min(most, variable.Size()); ++row) {
    const double value = variable.Values()[row];
    const auto label = variable.Label(value);
    std::ostringstream cell;
    if (variable.IsMissing(row)) {
      cell << "-";
    } else if (label && variable.Type() == VariableType::kText) {
      cell << "[" << *label << "]";
    } else {
      cell << value;
    }
    text += (row > 0 ? " " : "") + cell.str();
  }
  return text;
}

std::string RefusalOf(std::string_view bytes, const TextOptions& options = {}) {
  try {
    ReadDataBytes(bytes, "data", "file", options);
  } catch (const Error& error) {
    return error.what();
  }
  return "accepted";
}

std::string Packed(const std::string& content, int (*filter)(archive*)) {
  archive* writer = archive_write_new();
  std::string bytes(content.size() + 65536, '\0');
  std::size_t used = 0;
  filter(writer);
  archive_write_set_format_raw(writer);
  archive_write_open_memory(writer, bytes.data(), bytes.size(), &used);
  archive_entry* entry = archive_entry_new();
  archive_entry_set_filetype(entry, AE_IFREG);
  archive_write_header(writer, entry);
  archive_write_data(writer, content.data(), content.size());
  archive_entry_free(entry);
  archive_write_free(writer);
  bytes.resize(used);
  return bytes;
}

// A zip file of the parts.
std::string PackedParts(const std::vector<ZipPart>& parts, bool isCompressed = false) {
  const std::unique_ptr<archive, int (*)(archive*)> writer(archive_write_new(), archive_write_free);
  const std::unique_ptr<archive_entry, void (*)(archive_entry*)> entry(archive_entry_new(),
                                                                       archive_entry_free);
  std::string bytes;
  std::size_t room = 1 << 16;
  for (const ZipPart& part : parts) room += part.content.size() + 4 * part.name.size() + 1024;
  bytes.resize(room);
  std::size_t used = 0;
  archive_write_set_format_zip(writer.get());
  if (!isCompressed) archive_write_zip_set_compression_store(writer.get());
  archive_write_open_memory(writer.get(), bytes.data(), bytes.size(), &used);
  for (const ZipPart& part : parts) {
    archive_entry_clear(entry.get());
    archive_entry_set_pathname_utf8(entry.get(), part.name.c_str());
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), 0644);
    archive_entry_set_size(entry.get(), static_cast<la_int64_t>(part.content.size()));
    archive_write_header(writer.get(), entry.get());
    archive_write_data(writer.get(), part.content.data(), part.content.size());
  }
  archive_write_close(writer.get());
  bytes.resize(used);
  return bytes;
}

// Expected cells come from the scripts that made the files (reference/make_package_files.py), and R's iris.
TEST(DataFilesReference, FilesOfOtherProgramsMeanWhatTheyShowThere) {
  const struct {
    const char* file;
    std::size_t sheet;
    const char* column;
    const char* cells;
    std::size_t cases;
  } rows[] = {
      {"book.xlsx", 0, "when", "[2024-02-28] [2024-02-29 10:30:00] [2024-03-01] [2024-03-02]", 4},
      {"book.xlsx", 0, "force", "1.5 2.5 - 4.5", 4},
      {"book.xlsx", 0, "lot", "[A] [B, late] [A] [C]", 4},
      {"book.xlsx", 0, "double", "3 5 0 9", 4},
      {"book.xlsx", 0, "ok", "1 0 1 1", 4},
      {"book.xlsx", 1, "x", "1 2 3", 3},
      {"book.ods", 0, "when", "[2024-02-29] [2024-03-01 10:30:00] [2024-03-02]", 3},
      {"book.ods", 0, "force", "1.5 2.5 -", 3},
      {"book.ods", 0, "double", "3 5 0", 3},
      {"dates.dta", 0, "day", "[2024-02-29] [1959-12-31] -", 3},
      {"dates.dta", 0, "moment", "[2024-02-29 10:30:00] [1960-01-01] [2024-03-01 23:59:59]", 3},
      {"times.xlsx", 0, "day", "[2024-02-29] [2024-03-01]", 2},
      {"times.xlsx", 0, "clock", "10.5 0", 2},
      {"times.xlsx", 0, "lasted", "26.25 0.01", 2},
      {"cars.dta", 0, "mpg", "21 22.5 -", 3},
      {"cars.dta", 0, "make", "[Äpfel] [b] [c]", 3},
      {"iris.sav", 0, "Sepal.Length", "5.1 4.9 4.7 4.6", 150},
      {"iris.sas7bdat.gz", 0, "Sepal_Length", "5.1 4.9 4.7 4.6", 150},
      {"iris.sas7bdat.gz", 0, "Species", "[setosa] [setosa] [setosa] [setosa]", 150},
      {"iris.xpt", 0, "Sepal_Length", "5.1 4.9 4.7 4.6", 20},
      {"arrays.npz", 0, "x", "1.5 - 3", 3},
      {"arrays.npz", 0, "i", "1 -2 3", 3},
      {"arrays.npz", 0, "m_2", "1 3 5", 3},
      {"arrays.npz", 0, "f_1", "1 3 5", 3},
      {"arrays.npz", 0, "b", "1 0 1", 3},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.file) + " " + row.column);
    const DataRead read = ReadDataFile(kPackages + row.file, {});
    ASSERT_LT(row.sheet, read.sheets.size());
    const Spreadsheet& sheet = *read.sheets[row.sheet];
    EXPECT_EQ(sheet.CaseCount(), row.cases);
    EXPECT_EQ(Shown(sheet, row.column), row.cells);
  }
}

TEST(DataFilesReference, PackagesKeepLabelsAndDescriptions) {
  const DataRead cars = ReadDataFile(kPackages + "cars.dta", {});
  const Spreadsheet& sheet = *cars.sheets.front();
  EXPECT_EQ(sheet.VariableAt(1).Label(6), "six");
  EXPECT_EQ(sheet.VariableAt(1).Type(), VariableType::kNumeric);
  EXPECT_EQ(sheet.VariableAt(0).Property(kLabelProperty), "miles per gallon");
}

TEST(DataFiles, WorkbooksTellWhatIsDoubtful) {
  const DataRead read = ReadDataFile(kPackages + "book.xlsx", {});
  ASSERT_EQ(read.sheets.size(), 2u);
  EXPECT_EQ(read.sheets[0]->Name(), "Data");
  EXPECT_EQ(read.readAs, "in sheet Data the header in line 3");
  ASSERT_FALSE(read.doubts.empty());
  EXPECT_EQ(read.doubts[0].message,
            "sheet Data: 1 merged range, of which the first cell has the value and the others are missing");
}

TEST(DataFiles, LinesOfJsonAreATable) {
  const DataRead read = ReadDataBytes(
      "{\"x\": 1.5, \"t\": \"a, b\"}\n\n{\"t\": \"NA\", \"y\": true}\n{\"x\": null, \"t\": null}\n", "data",
      "file", {});
  const Spreadsheet& sheet = *read.sheets.front();
  EXPECT_EQ(Shown(sheet, "x"), "1.5 - -");
  EXPECT_EQ(Shown(sheet, "t"), "[a, b] - -");
  EXPECT_EQ(Shown(sheet, "y"), "- 1 -");
}

TEST(DataFiles, PackedTextsAreUnpacked) {
  for (const auto filter : {archive_write_add_filter_gzip, archive_write_add_filter_zstd}) {
    const DataRead read = ReadDataBytes(Packed("x;y\n1,5;2\n", filter), "data", "file", {});
    EXPECT_EQ(Shown(*read.sheets.front(), "x"), "1.5");
    EXPECT_TRUE(read.readAs.starts_with("content packed by ")) << read.readAs;
  }
}

TEST(DataFiles, WhatIsNotReadIsNamed) {
  const std::string compound = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
  std::string encrypted = compound;
  for (const char c : std::string_view("EncryptedPackage")) encrypted += {c, '\0'};
  const struct {
    std::string bytes;
    const char* refusal;
  } rows[] = {
      {"PAR1....PAR1",
       "this is a Parquet file, which is not read; in Python: brenvolt.fit(pandas.read_parquet(FILE))"},
      {std::string("ARROW1\0\0", 8),
       "this is an Arrow file, which is not read; in Python: brenvolt.fit(pandas.read_feather(FILE))"},
      {"\x89HDF\r\n\x1a\n",
       "this is an HDF5 file, which is not read; in Python: brenvolt.fit(pandas.read_hdf(FILE))"},
      {"%PDF-1.4", "this is a PDF file, which is not read; it holds pages, not a table of data"},
      {"<!DOCTYPE html><p>", "this is an HTML page, which is not read; save its table as .csv"},
      {"{\n \"a\": 1\n}\n",
       "this is a JSON document, which is not read; write an object in each line, or .csv"},
      {encrypted, "this is an encrypted workbook, which is not read; save it without a password"},
      {compound,
       "this is an office document in an old format, which is not read; save it as .xlsx, .ods or .csv"},
      {PackedParts({{"word/document.xml", "x"}}),
       "this is a word processor's document, which is not read; save its table as .csv"},
      {PackedParts({{"a.csv", "x"}}), "this is a zip archive, which is not read; unpack it"},
  };
  for (const auto& row : rows) EXPECT_EQ(RefusalOf(row.bytes), row.refusal);
}

std::string Contents(const char* file) {
  const MappedFile mapped(kPackages + file);
  return mapped.Use([](std::string_view text) { return std::string(text); });
}

TEST(DataFiles, CutFilesAreRefused) {
  for (const char* file :
       {"book.xlsx", "book.ods", "cars.dta", "iris.sav", "iris.xpt", "iris.sas7bdat.gz", "arrays.npz"}) {
    const std::string whole = Contents(file);
    for (const double share : {0.1, 0.5, 0.9}) {
      const std::string refusal =
          RefusalOf(whole.substr(0, static_cast<std::size_t>(share * static_cast<double>(whole.size()))));
      // A table of cases that ends early is one of fewer cases.
      const bool mayEndEarly = std::string_view(file) == "iris.xpt" && share > 0.4;
      EXPECT_TRUE(refusal != "accepted" || mayEndEarly) << file << " " << share;
    }
  }
}

TEST(DataFiles, ColumnsWithoutRowsTakeNeitherTimeNorMemory) {
  const std::string header = "{'descr': '<f8', 'fortran_order': False, 'shape': (0, 9007199254740992), }\n";
  const std::string array =
      std::string("\x93NUMPY\x01\x00", 8) + static_cast<char>(header.size()) + '\0' + header;
  EXPECT_EQ(RefusalOf(PackedParts({{"x.npy", array}})), "the file has no cases");
}

// The bytes with the field that stands so far after the first mark filled with one letter, so that no byte ends the name in it.
void FillName(std::string& bytes, std::string_view mark, std::size_t before, std::size_t width, char letter) {
  const std::size_t start = bytes.find(mark) + mark.size() + before;
  ASSERT_LE(start + width, bytes.size());
  std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(start), width, letter);
}

TEST(DataFiles, NamesOfLabelSetsEndWithTheirFields) {
  constexpr std::size_t kWidth = 129;
  constexpr std::size_t kBytesOfLength = 4;
  std::string bytes = Contents("cars.dta");
  FillName(bytes, "<value_label_names>", kWidth, kWidth, 's');
  FillName(bytes, "<value_label_names>", 2 * kWidth, kWidth, 't');
  FillName(bytes, "<lbl>", kBytesOfLength, kWidth, 's');
  const DataRead read = ReadPackageFile(bytes, FileKind::kStata, "data", "file");
  EXPECT_EQ(read.sheets.front()->VariableAt(1).Label(6), "six");
}

// A sheet of the cells given, as the least that a workbook consists of.
std::string Workbook(const std::string& cells, const std::string& prologue = {},
                     const std::string& texts = {}) {
  const std::string ns = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
  const std::string relations = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
  const std::string package = "http://schemas.openxmlformats.org/package/2006/";
  return PackedParts(
      {{"[Content_Types].xml",
        "<?xml version=\"1.0\"?><Types xmlns=\"" + package +
            "content-types\"><Default Extension=\"rels\" "
            "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
            "<Default Extension=\"xml\" ContentType=\"application/xml\"/><Override "
            "PartName=\"/xl/workbook.xml\" "
            "ContentType=\"application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml\"/"
            "><Override "
            "PartName=\"/xl/worksheets/sheet1.xml\" "
            "ContentType=\"application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml\"/></"
            "Types>"},
       {"_rels/.rels", "<?xml version=\"1.0\"?><Relationships xmlns=\"" + package +
                           "relationships\"><Relationship Id=\"rId1\" Type=\"" + relations +
                           "/officeDocument\" Target=\"xl/workbook.xml\"/></Relationships>"},
       {"xl/workbook.xml",
        "<?xml version=\"1.0\"?><workbook xmlns=\"" + ns + "\" xmlns:r=\"" + relations +
            "\"><sheets><sheet name=\"S\" sheetId=\"1\" r:id=\"rId1\"/></sheets></workbook>"},
       {"xl/_rels/workbook.xml.rels", "<?xml version=\"1.0\"?><Relationships xmlns=\"" + package +
                                          "relationships\"><Relationship Id=\"rId1\" Type=\"" + relations +
                                          "/worksheet\" Target=\"worksheets/sheet1.xml\"/><Relationship "
                                          "Id=\"rId2\" Type=\"" +
                                          relations +
                                          "/sharedStrings\" Target=\"/xl/texts.xml\"/></Relationships>"},
       {"xl/texts.xml", "<?xml version=\"1.0\"?><sst xmlns=\"" + ns + "\">" + texts + "</sst>"},
       {"xl/worksheets/sheet1.xml", "<?xml version=\"1.0\"?>" + prologue + "<worksheet xmlns=\"" + ns +
                                        "\"><sheetData>" + cells + "</sheetData></worksheet>"}});
}

// The forms in which programs write a text into a cell.
TEST(DataFiles, TextsOfWorkbooksAreReadInAllTheirForms) {
  const std::string texts =
      "<si><t>head</t></si><si><r><rPr><b/></rPr><t>bo</t></r><r><t xml:space=\"preserve\">ld &amp; "
      "plain</t></r></si>"
      "<si><t/></si><si><t>\u6771\u4EAC</t><rPh sb=\"0\" eb=\"1\"><t>\u30C8\u30A6</t></rPh></si>";
  const std::string rows =
      "<row r=\"1\"><c r=\"A1\" t=\"s\"><v>0</v></c><c r=\"B1\" t=\"inlineStr\"><is><t>x</t></is></c></row>"
      "<row r=\"2\"><c r=\"A2\" t=\"s\"><v>1</v></c><c r=\"B2\"><f>1+1</f><v>2</v></c></row>"
      "<row r=\"3\"><c r=\"A3\" t=\"s\"><v>2</v></c><c r=\"B3\"><v>3</v></c></row>"
      "<row r=\"4\"><c r=\"A4\" t=\"s\"><v>3</v></c><c r=\"B4\"><v>4</v></c></row>"
      "<row><c t=\"inlineStr\"><is><r><t>in </t></r><r><t>two</t></r></is></c><c><v>5</v></c></row>"
      "<row><c t=\"str\"><f>A1</f><v>made</v></c><c><v>6</v></c></row>"
      "<row><c t=\"e\"><v>#DIV/0!</v></c><c t=\"b\"><v>1</v></c></row>";
  const DataRead read = ReadDataBytes(Workbook(rows, {}, texts), "data", "file", {});
  EXPECT_EQ(Shown(*read.sheets.front(), "head", 9), "[bold & plain] - [\u6771\u4EAC] [in two] [made] -");
  EXPECT_EQ(Shown(*read.sheets.front(), "x", 9), "2 3 4 5 6 1");
  EXPECT_EQ(RefusalOf(Workbook("<row><c t=\"s\"><v>7</v></c></row>", {}, texts)),
            "the file is damaged: a cell refers to a text that is not there");
  EXPECT_EQ(RefusalOf(Workbook("<row><c><v>1x</v></c></row>")),
            "the file is damaged: a cell of a number does not hold one");
}

// A sheet of the rows given, as the least that an ods workbook consists of.
std::string OdsWorkbook(const std::string& rows, const std::string& prologue = {},
                        const std::string& manifest = "<manifest/>", bool isCompressed = false) {
  return PackedParts(
      {{"mimetype", "application/vnd.oasis.opendocument.spreadsheet"},
       {"content.xml", "<?xml version=\"1.0\"?>" + prologue +
                           "<o:document-content><o:body><o:spreadsheet><t:table t:name=\"S\">" + rows +
                           "</t:table></o:spreadsheet></o:body></o:document-content>"},
       {"META-INF/manifest.xml", manifest}},
      isCompressed);
}
std::string OdsText(const std::string& text, const std::string& attributes = {}) {
  return "<t:table-cell o:value-type=\"string\"" + attributes + "><x:p>" + text + "</x:p></t:table-cell>";
}
std::string OdsNumber(const std::string& attributes = {}) {
  return "<t:table-cell o:value-type=\"float\" o:value=\"1\"" + attributes + "/>";
}
std::string OdsRow(const std::string& cells, const std::string& attributes = {}) {
  return "<t:table-row" + attributes + ">" + cells + "</t:table-row>";
}
std::string XlsxText(const std::string& place, const std::string& text) {
  return "<c r=\"" + place + "\" t=\"inlineStr\"><is><t>" + text + "</t></is></c>";
}
std::string Repeated(const std::string& text, std::size_t count) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

// A few hundred bytes that ask for gigabytes, and documents that are built to break their readers.
TEST(DataFiles, WorkbooksOfMaliceAreRefusedByName) {
  const std::string head = "<row r=\"1\">" + XlsxText("A1", "x") + "</row>";
  const std::string odsHead = OdsRow(OdsText("x"));
  const std::string everyColumn = " t:number-columns-repeated=\"16384\"";
  const std::string everyRow = " t:number-rows-repeated=\"1048576\"";
  const std::string megabyte((std::size_t{1} << 20) - 100, 'a');
  const std::string nested = Repeated("<a>", 2000) + Repeated("</a>", 2000);
  const struct {
    const char* what;
    std::string bytes;
    const char* refusal;
  } rows[] = {
      {"cells far apart", Workbook(head + "<row r=\"1048576\"><c r=\"XFD1048576\"><v>1</v></c></row>"),
       "which is not a table"},
      {"a billion cells", OdsWorkbook(odsHead + OdsRow(OdsNumber(everyColumn), everyRow)),
       "the workbook has more than 5000000 cells, most of which repeat others"},
      {"a text in each", OdsWorkbook(odsHead + OdsRow(OdsText(megabyte, everyColumn), everyRow)),
       "the workbook repeats its texts to more than 64 MB"},
      {"a shared text in each",
       Workbook(Repeated("<row><c t=\"s\"><v>0</v></c></row>", 1000), {}, "<si><t>" + megabyte + "</t></si>"),
       "the workbook repeats its texts to more than 64 MB"},
      {"a zip bomb", OdsWorkbook(std::string(std::size_t{257} << 20, ' '), {}, "<manifest/>", true),
       "the file unpacks to more than 256 MB"},
      {"nested elements", OdsWorkbook(OdsRow(nested)), "more than 1000 elements lie in each other"},
      {"nested elements in xlsx", Workbook("<row r=\"1\">" + nested + "</row>"),
       "more than 1000 elements lie in each other"},
      {"an element without end", OdsWorkbook(OdsRow("<a>")), "an element ends that did not begin"},
      {"a cut element", OdsWorkbook("<t:table-row t:style=\"a"), "it is cut off"},
      {"a long text", OdsWorkbook(odsHead + OdsRow(OdsText(megabyte + std::string(101, 'a')))),
       "a cell holds a text of more than 1 MB"},
      {"a long text in xlsx",
       Workbook(head + "<row r=\"2\">" + XlsxText("A2", megabyte + std::string(101, 'a')) + "</row>"),
       "a cell holds a text of more than 1 MB"},
      {"a password", OdsWorkbook("x", {}, "<manifest><encryption-data/></manifest>"),
       "the workbook is encrypted; save it without a password"},
      {"a password of newer programs", PackedParts({{"encrypted-package", "x"}}),
       "this is an encrypted document, which is not read; save it without a password"},
  };
  for (const auto& row : rows)
    EXPECT_NE(RefusalOf(row.bytes).find(row.refusal), std::string::npos)
        << row.what << ": " << RefusalOf(row.bytes);
}

TEST(DataFiles, OddWorkbooksMeanWhatTheyShow) {
  const std::string bomb =
      "<!DOCTYPE w [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\"><!ENTITY c "
      "\"&b;&b;&b;&b;&b;&b;\">]>";
  const std::string head = "<row r=\"1\">" + XlsxText("A1", "x") + "</row>";
  const std::string odsHead = OdsRow(OdsText("x"));
  const std::string merged = " t:number-columns-spanned=\"2\" t:number-rows-spanned=\"1\"";
  const struct {
    const char* what;
    std::string bytes;
    const char* x;
  } rows[] = {
      {"entities stay as they are", Workbook(head + "<row r=\"2\">" + XlsxText("A2", "&c;") + "</row>", bomb),
       "[&c;]"},
      {"entities in ods", OdsWorkbook(odsHead + OdsRow(OdsText("&c;&lt;&#x20AC;&#0;")), bomb),
       "[&c;<\u20AC&#0;]"},
      {"errors are missing", OdsWorkbook(odsHead + OdsRow(OdsText("#DIV/0!"))), "-"},
      {"the first of merged cells has the value",
       OdsWorkbook(OdsRow(OdsText("x") + OdsText("y")) +
                   OdsRow(OdsNumber(merged) + "<t:covered-table-cell/>") + OdsRow(OdsNumber() + OdsNumber())),
       "1 1"},
      {"remarks are no cells",
       OdsWorkbook(odsHead + OdsRow("<t:table-cell o:value-type=\"float\" o:value=\"7\"><o:annotation><x:p>no"
                                    "</x:p></o:annotation><x:p>7</x:p></t:table-cell>")),
       "7"},
      {"durations are hours",
       OdsWorkbook(odsHead + OdsRow("<t:table-cell o:value-type=\"time\" o:time-value=\"PT26H15M00S\"/>")),
       "26.25"},
      {"character data", OdsWorkbook(odsHead + OdsRow(OdsText("<![CDATA[<a> & b]]><!-- > -->"))),
       "[<a> & b]"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    EXPECT_EQ(Shown(*ReadDataBytes(row.bytes, "data", "file", {}).sheets.front(), "x"), row.x);
  }
  const std::string wide = Workbook(head + "<row r=\"2\"><c r=\"A2\"><v>1</v></c></row>" +
                                    "<row r=\"3\"><c r=\"XFD3\"><v>1</v></c></row>");
  EXPECT_EQ(ReadDataBytes(wide, "data", "file", {}).sheets.front()->VariableCount(), 16384u);
  const std::string odsWide =
      OdsWorkbook(OdsRow(OdsText("x", " t:number-columns-repeated=\"16384\"")) +
                  OdsRow(OdsNumber(" t:number-columns-repeated=\"20000\""), " t:number-rows-repeated=\"3\""));
  EXPECT_EQ(ReadDataBytes(odsWide, "data", "file", {}).sheets.front()->VariableCount(), 16384u);
}

TEST(DataFiles, WhatUnpacksWithoutEndIsRefused) {
  const std::string bomb = Packed(std::string(std::size_t{300} << 20, '0'), archive_write_add_filter_gzip);
  EXPECT_EQ(RefusalOf(bomb), "the file unpacks to more than 256 MB, which no table of data of its size does");
}

TEST(DataFiles, TextsBeyondBoundsAndWrongBytesAreNamed) {
  const std::string longCell = "a,b\n1," + std::string(kMostTextBytes + 1, 'x') + "\n";
  EXPECT_EQ(RefusalOf(longCell), "the field holds a text of 1048577 bytes, more than 1048576");
  std::string wrongInTheMiddle = "a,b\n";
  for (int i = 0; i < 20'000; ++i) wrongInTheMiddle += "1,text\n";
  wrongInTheMiddle += "2,caf\xE9\n";
  EXPECT_EQ(
      RefusalOf(wrongInTheMiddle),
      "the text is not UTF-8 from here on, as it is above; another encoding reads it: windows-1252, for one");
  TextOptions western;
  western.encoding = "windows-1252";
  EXPECT_EQ(RefusalOf(wrongInTheMiddle, western), "accepted");
  TextOptions japanese;
  japanese.encoding = "EUC-JP";
  EXPECT_EQ(RefusalOf(wrongInTheMiddle, japanese), "the text is not EUC-JP in line 20002");
}

TEST(DataFiles, FewTextsAmongNumbersAreRefusedWithTheirPlaces) {
  std::string text = "x,y\n";
  for (int i = 0; i < 500; ++i) text += i == 40 || i == 41 ? "n/a,1\n" : i == 300 ? "broken,1\n" : "1.5,1\n";
  try {
    ReadDataBytes(text, "data", "file", {});
    FAIL();
  } catch (const StrayTextsError& stray) {
    ASSERT_EQ(stray.Columns().size(), 1u);
    const StrayTexts& found = stray.Columns().front();
    EXPECT_EQ(found.column, "x");
    EXPECT_EQ(found.texts, 3u);
    EXPECT_EQ(found.values, 500u);
    ASSERT_EQ(found.first.size(), 3u);
    EXPECT_EQ(found.first[2].text, "broken");
    EXPECT_EQ(found.first[2].line, 302u);
  }
  TextOptions missing;
  missing.missingText = {"n/a", "broken"};
  EXPECT_EQ(Shown(*ReadDataBytes(text, "data", "file", missing).sheets.front(), "x", 1), "1.5");
  TextOptions texts;
  texts.text = {"x"};
  EXPECT_EQ(Shown(*ReadDataBytes(text, "data", "file", texts).sheets.front(), "x", 1), "[1.5]");
}

TEST(DataFiles, OptionsThatDoNotApplyAreRefused) {
  TextOptions delimiter;
  delimiter.delimiter = ";";
  TextOptions third;
  third.header = "3";
  TextOptions unknown;
  unknown.text = {"c"};
  const struct {
    std::string bytes;
    TextOptions options;
    const char* field;
  } rows[] = {
      {Contents("book.xlsx"), delimiter, "delimiter"},
      {Contents("iris.sav"), third, "header"},
      {"a,b\n1,2\n", third, "header"},
      {"a,b\n1,2\n", unknown, "text"},
  };
  for (const auto& row : rows) {
    try {
      ReadDataBytes(row.bytes, "data", "file", row.options);
      ADD_FAILURE() << row.field;
    } catch (const OptionError& wrong) {
      EXPECT_EQ(wrong.Field(), row.field);
    }
  }
}

// Each text with what is told of it, the option in front.
TEST(DataFiles, WhatBecomesOtherThanItLooksIsSaid) {
  const struct {
    const char* bytes;
    const char* told;
  } rows[] = {
      {"id,x\n001,1\n002,2\n",
       "text: id is read as numbers, and '002' loses its zeros; 'id' here keeps them as texts"},
      {"x,y\n12 %,1\n13 %,2\n11 %,3\n",
       ": x is read as text: its values are numbers with signs or units, as '12 %'; without them they are "
       "read as "
       "numbers"},
      {"x,y\n-,1\n-,2\n-,3\n4,4\n",
       "missingText: x is read as text: all that is no number in it looks like a missing value; '-' here "
       "reads such "
       "texts as missing"},
      {"x,y\n1,1\nn.d.,2\n3,3\n4,4\n",
       "missingText: x is read as text: of its 4 values 1 is not a number: 'n.d.' (line 3); 'n.d.' here "
       "reads "
       "such texts "
       "as missing"},
      {"x,y\n1,1\n<0.5,2\n3,3\n4,4\n",
       ": x is read as text: values such as '<0.5' (line 3) are known by a bound alone; with the bound as a "
       "number, and "
       "a column that says left or right of it, a fit takes them as censored"},
      {"x\n1.234\n2.345\n3.456\n",
       "decimal: '3.456' is read as a decimal fraction; it could be a whole number with groups of digits"},
      {"n,t\n1,\x83\x65\x83\x58\n2,\x83\x67\n",
       "encoding: few characters tell the encoding, which is taken for windows-1252"},
      {"a1,b\nA1,1\nB2,2\n", ""},
  };
  for (const auto& row : rows) {
    const DataRead read = ReadDataBytes(row.bytes, "data", "file", {});
    std::string told;
    for (const ReadingNote& doubt : read.doubts) told += doubt.field + ": " + doubt.message;
    EXPECT_EQ(told, row.told) << row.bytes;
  }
}

TEST(DataFiles, OldLineEndsAndTypesettersMinusAreRead) {
  const DataRead read = ReadDataBytes("x,y\r\u22121.5,1\r2,3\r", "data", "file", {});
  EXPECT_EQ(Shown(*read.sheets.front(), "x"), "-1.5 2");
  EXPECT_EQ(read.readAs, "returns alone at the ends of lines");
  EXPECT_EQ(RefusalOf(std::string_view("x,y\n1,\0\x01\n", 9)),
            "the file is no text: it holds bytes that stand in none");
  TextOptions given;
  given.encoding = "UTF-8";
  EXPECT_EQ(RefusalOf("x,y\n1,\xFF\n", given), "the text is not UTF-8");
}

TEST(DataFiles, AnArchiveWithoutItsEndIsNamed) {
  std::ifstream stream(kPackages + "book.xlsx", std::ios::binary);
  const std::string book{std::istreambuf_iterator<char>(stream), {}};
  EXPECT_EQ(RefusalOf(book.substr(0, book.size() / 2)),
            "this is a workbook whose end is missing, which is not read; copy or download it again");
}

TEST(DataFiles, WordsThatMeanNothingAreRefused) {
  TextOptions wrong;
  wrong.delimiter = "5";
  wrong.decimal = "x";
  wrong.thousands = ";";
  wrong.header = "none";
  wrong.comment = "ab";
  wrong.encoding = "nothing";
  std::string fields;
  for (const ReadingNote& fault : CheckTextOptions(wrong)) fields += fault.field + " ";
  EXPECT_EQ(fields, "delimiter decimal thousands header comment encoding ");
  TextOptions twice;
  twice.delimiter = twice.decimal = ",";
  EXPECT_EQ(CheckTextOptions(twice).size(), 1u);
}

}  // namespace
}  // namespace brenvolt
