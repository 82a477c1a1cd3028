// Rectangles of cells as text, as spreadsheets exchange them: tabs between cells, a line for each row, quotes around
// texts that hold either.
#pragma once

#include <QString>
#include <string>
#include <string_view>
#include <vector>

namespace brenvolt::desktop {

using TextRows = std::vector<std::vector<std::string>>;

// Rows may differ in length. A last line without text is none.
TextRows RowsOf(const QString& text);

// Appends a cell, with what separates it from the one before.
void AppendCell(std::string& text, std::string_view cell, bool isFirstOfRow);

}  // namespace brenvolt::desktop
