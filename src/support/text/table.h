// Text tables: keyword lines declare named columns, every other line that is not empty is a row.
//
//   REMARK ...   comment             VARS   the column names          NULLSTRING  text for a missing text
//   DATA ...     named datum         FORMAT one printf format each    NULLVALUE   integer for a missing value
//   # ...        comment             TOLERANCE one number each        END         ignored
#pragma once

#include "ground/alloc.h"

#include <string>
#include <string_view>
#include <vector>

namespace trelm {

/// One column.
struct tabVar {
    int type = 0;                       ///< 1 text, 2 integer, 3 real
    std::string name;                   ///< from VARS
    std::string fmt;                    ///< from FORMAT, "%f" without one; "_" stands for a blank
    std::vector<std::string> equivList; ///< the distinct texts, in order of appearance
};

/// The cell of a text that is the NULLSTRING: it names no text.
constexpr float nullTextCell = -1.0f;

/// A table in memory. A cell is a number; in a text column it is the place of its text in `equivList`.
struct TextTable {
    Block<float> matrix; ///< entryCount rows of varCount cells
    int varCount = 0;
    int entryCount = 0;
    std::vector<tabVar> varInfo;
    std::vector<std::string> header; ///< "#", DATA and REMARK lines, where they were asked for
};

/// Reads a table with rows. A cell of an integer or real column that equals NULLVALUE becomes `defNullValue`.
/// A cell that is missing or no number is 0, after a warning with its line for each of them; a table without
/// FORMAT is told of. Returns 0, or 1 after a message on the standard error stream; the table then holds what
/// was read.
int rdTable(const std::string &inName, TextTable &table, int defNullValue);

/// The reader itself. `header` asks for the header lines, `emptyOk` accepts a table with no rows, `readFlag`
/// 1 reads the rows and any other value the declarations alone.
int rdTable2(const std::string &inName, TextTable &table, bool header, int defNullValue, int emptyOk,
             int readFlag);

/// The place of a column; capitals and small letters are one. The last of two equal names wins. -1 if there
/// is none.
int getTabVar(const std::vector<tabVar> &varInfo, std::string_view varName);

/// The text of a cell of a text column: empty where it is a NULLSTRING cell or names no text.
std::string_view tabText(const tabVar &column, float cell);

} // namespace trelm
