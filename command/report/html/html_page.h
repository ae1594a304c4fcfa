// Makes what every page consists of: its frame, headings, tables and folded parts. html_style.h has their style.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "command/report/html/html_markup.h"

/// A complete page in one file. It loads nothing, runs nothing, and is also well-formed XML. `style`: appended to the
/// style of all pages; no character in it may need escaping.
std::string MakeHtmlPage(const std::string& title, TMarkup content, const char* style = "");

/// A heading of level 1, 2, ... `id`: the target of links; may be empty.
TMarkup MakeHeading(int level, TMarkup content, const std::string& id = {});

/// The heading cell of a column or a row.
TMarkup MakeColumnName(TMarkup content, const std::string& title = {});
TMarkup MakeRowName(TMarkup content, const std::string& title = {});

/// A row of a table.
TMarkup MakeRow(TMarkup cells);

/// A table. `names`: the cells of its heading row, which is repeated on each printed sheet. `rows`: complete rows. The
/// caption and the names may be empty.
TMarkup MakeTable(const TMarkup& caption, const TMarkup& names, TMarkup rows);

/// "1 machine", "2 machines".
std::string CountNouns(std::size_t count, const char* noun);

/// The content, folded away under the summary. It is printed only if it is open; otherwise a sentence says so.
TMarkup MakeFolded(const std::string& summary, const TMarkup& content);
