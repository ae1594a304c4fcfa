// Writes a page while it is made, since it may be too long for memory.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "command/report/html/html_markup.h"

class THtmlPieces {
 public:
  /// `write`: takes a piece of the page, and returns false to get no more. It must outlive this.
  explicit THtmlPieces(const std::function<bool(const std::string&)>& write) : m_write(write) {}

  void Put(TMarkup markup) { Put(markup.Take()); }
  void Put(const std::string& text);

  /// Writes what is left.
  void Flush();

 private:
  const std::function<bool(const std::string&)>& m_write;
  std::string m_piece;
  bool m_isRead = true;
};

/// Splits an empty element or page before `tag`: into what comes before its content and what comes after it.
std::pair<std::string, std::string> Part(const std::string& text, const char* tag);
std::pair<std::string, std::string> Part(TMarkup markup, const char* tag);
