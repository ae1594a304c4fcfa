// The raw instances of each request as tables in the page, linked with each other.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "command/report/answer_view.h"
#include "command/report/html/html_markup.h"

/// Where the page shows which instance.
class THtmlAnchors {
 public:
  struct TAnchor {
    std::string id;     // that a link leads to
    std::string label;  // class and name of the instance, short enough for a link
  };

  explicit THtmlAnchors(const TAnswer& answer);

  /// Where a link from that request to that object path leads: to the request's own last instance of that path, else to
  /// another request's; null when no request has one.
  const TAnchor* Find(std::size_t request, const std::string& path) const;

  /// The id of the instance at that position among those of its class in that request.
  static std::string MakeId(std::size_t request, const std::string& className, std::size_t position);

 private:
  std::vector<std::map<std::string, TAnchor>> m_requests;  // by the object path as printable text
};

/// The classes of a request, each under a heading of that level. Devices have a table each, with a property in each
/// row; modes and associations, which are many and small, one table with an instance in each row. A reference is a link
/// to the instance that it names, or the whole object path when no request has that instance.
TMarkup MakeInstances(const THtmlAnchors& anchors, std::size_t request, const TRequestView& view, int level);
