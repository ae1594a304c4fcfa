// Writes the instances of each request as tables in the page, linked with each other.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "command/report/answer_view.h"
#include "command/report/html/html_markup.h"

/// Where the page shows each instance.
class THtmlAnchors {
 public:
  struct TAnchor {
    std::string id;     // the target of a link
    std::string label;  // class and name of the instance, short enough for a link
  };

  explicit THtmlAnchors(const TAnswer& answer);

  /// The target of a link from that request to that object path: the request's own last instance of that path, or else
  /// another request's. Null if no request has one.
  const TAnchor* Find(std::size_t request, const std::string& path) const;

  /// The id of the instance at `position` among those of its class in that request.
  static std::string MakeId(std::size_t request, const std::string& className, std::size_t position);

 private:
  std::vector<std::map<std::string, TAnchor>> m_requests;  // by the object path as printable text
};

/// The classes of a request, each under a heading of that level. Each device has a table with a property in each row.
/// Modes and associations, which are many and small, share a table with an instance in each row. A reference is a link
/// to the instance that it names, or the whole object path if no request has that instance.
TMarkup MakeInstances(const THtmlAnchors& anchors, std::size_t request, const TRequestView& view, int level);
