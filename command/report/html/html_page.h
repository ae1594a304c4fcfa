// What every page is made of: its frame, its headings, its tables and its folded parts. All of it is styled by
// html_style.h.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "command/report/html/html_markup.h"

/// A whole page in one file. It loads nothing, runs nothing, and is well-formed XML as well. `style`: of its own, after
/// what all pages have; no character in it needs escaping.
std::string MakeHtmlPage(const std::string& title, TMarkup content, const char* style = "");

/// A heading of level 1, 2, ... `id`: what a link may lead to; empty for none.
TMarkup MakeHeading(int level, TMarkup content, const std::string& id = {});

/// The cell that names a column, or a row.
TMarkup MakeColumnName(TMarkup content, const std::string& title = {});
TMarkup MakeRowName(TMarkup content, const std::string& title = {});

/// A row of a table.
TMarkup MakeRow(TMarkup cells);

/// A table. `names`: the cells of its heading row, which paper repeats on each sheet. `rows`: whole rows. The caption
/// and the names may be empty.
TMarkup MakeTable(const TMarkup& caption, const TMarkup& names, TMarkup rows);

/// "1 machine", "2 machines".
std::string CountNouns(std::size_t count, const char* noun);

/// The content, folded away under the summary. Paper shows it only if it was opened, and says so.
TMarkup MakeFolded(const std::string& summary, const TMarkup& content);
