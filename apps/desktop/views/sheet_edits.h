// What a person does in the grid, as edits of the document. All throw Error saying what is wrong, and where.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "apps/desktop/base/text_block.h"
#include "apps/desktop/documents/edit.h"
#include "host/base/number_text.h"

namespace brenvolt::desktop {

// A rectangle of cells, counted from 0.
struct CellArea {
  std::size_t row = 0;
  std::size_t column = 0;
  std::size_t rows = 0;
  std::size_t columns = 0;
};

// Texts for cells, and the names of the variables that stood above them, if any did.
struct PastedTexts {
  TextRows rows;
  std::vector<std::string> names;
};

// Takes the line of names, and one of units below it, off texts that are to go to a place: lines that the reader of text
// files would take for them too. Names are those of variables that are added, that have no other values, or that have these
// names already; where they would be others', the line stays among the texts.
PastedTexts SplitNames(const Spreadsheet& sheet, std::size_t row, std::size_t column, TextRows texts,
                       NumberLocale locale);

// Texts into cells from a place on, to the right and down. Cases and variables that are not there yet are added behind
// the others. A variable that is added, or has no other values, gets its name, and is of texts if not all are numbers. In a
// matrix of correlations the mirrored cell follows.
Edits Paste(const Spreadsheet& sheet, std::size_t row, std::size_t column, const PastedTexts& texts,
            NumberLocale locale);
// One text into all cells of a rectangle.
Edits Fill(const Spreadsheet& sheet, const CellArea& area, const std::string& text, NumberLocale locale);

Edits InsertEmptyCases(const Spreadsheet& sheet, std::size_t at, std::size_t count);
// Of missing values, under names that are free.
Edits InsertEmptyVariables(const Spreadsheet& sheet, std::size_t at, std::size_t count);

// A rectangle as text, with the names of the variables above it if asked for.
std::string CopyText(const Spreadsheet& sheet, const CellArea& area, bool withNames, NumberLocale locale);

}  // namespace brenvolt::desktop
