#include "loamshow/commands/CheckReport.h"

#include "loamshow/json/JsonWriter.h"
#include "platform/tabula/Utf8.h"

namespace loamshow {

std::string checkListing(const std::vector<Finding>& findings) {
  std::string lines;
  for (const Finding& finding : findings) {
    lines += tabula::masked(finding.member + ": " + finding.problem) + '\n';
  }
  return lines;
}

std::string checkJson(const std::vector<Finding>& findings) {
  std::string text;
  JsonWriter out(text, JsonWriter::Layout::oneLine);
  out.beginObject();
  out.key("findings");
  out.beginArray();
  for (const Finding& finding : findings) {
    out.beginObject();
    out.member("member", finding.member);
    out.member("problem", finding.problem);
    out.endObject();
  }
  out.endArray();
  out.endObject();
  return text;
}

}  // namespace loamshow
