// Text tables: keyword lines declare named columns, every other line that is not empty is a row.
//
//   REMARK ...   comment             VARS   the column names          NULLSTRING  text for a missing text
//   DATA ...     named datum         FORMAT one printf format each    NULLVALUE   integer for a missing value
//   # ...        comment             TOLERANCE one number each        END         ignored
#pragma once

#include "ground/alloc.h"
#include "ground/messages.h"
#include "support/text/text_input.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trelm {

enum class CellType { text, integer, real };

/// Cells that were hardly meant as they were read.
struct OddCells {
    std::size_t count = 0;
    std::vector<std::string> first; ///< some of them, as "-8,17 in row 5"
};

/// One column.
struct tabVar {
    CellType type = CellType::real;          ///< from FORMAT, real without one
    std::string name;                        ///< from VARS
    std::vector<std::string> equivList = {}; ///< the distinct texts, in order of appearance
    OddCells noNumber = {};                  ///< a number that is missing or a text: read as 0
    OddCells partly = {};                    ///< a number with something behind it, which was left out
    OddCells cut = {};                       ///< a fraction in a column of integers, which was left out
    OddCells beyond = {};                    ///< an integer beyond int, read as the nearest that is not
};

/// The cell of a text that is the NULLSTRING: it names no text.
constexpr float nullTextCell = -1.0f;

/// A table in memory. A cell is a number; in a text column it is the place of its text in `equivList`.
struct TextTable {
    std::vector<tabVar> varInfo;
    Block<float> matrix; ///< entryCount rows of as many cells as there are columns
    std::size_t entryCount = 0;
};

/// Reads the whole file of a table. An empty name names no file here. Fails after a message.
Status openTable(const std::string &inName, TextInput &input, Messages &messages);

/// Reads a table with rows. A cell of an integer or real column that equals NULLVALUE becomes `defNullValue`.
/// A cell that is missing or no number is 0, after a warning with its line for each of them; a table without
/// FORMAT is told of. Fails after a message.
Status rdTable(const std::string &inName, TextTable &table, float defNullValue, Messages &messages);

/// The same from a text that is read already, from its first line.
Status parseTable(const std::string &inName, TextInput &input, TextTable &table, float defNullValue,
                  Messages &messages);

/// The place of a column; capitals and small letters are one. The last of two equal names wins.
std::optional<std::size_t> getTabVar(const std::vector<tabVar> &varInfo, std::string_view varName);

/// The text of a cell of a text column: empty where it is a NULLSTRING cell or names no text.
std::string_view tabText(const tabVar &column, float cell);

} // namespace trelm
