/// How the tool writes JSON down.
#ifndef ZYNCAM_JSON_TEXT_H
#define ZYNCAM_JSON_TEXT_H

#include <nlohmann/json.hpp>
#include <string>

namespace zyncam {

/// The text of a JSON value: indented over several lines, or with `indent` -1 on one. Names and values come
/// from cameras and from the command line and need not be UTF-8: each wrong byte becomes U+FFFD, so that one bad name
/// does not cost the whole result.
inline std::string JsonText(const nlohmann::ordered_json& json, int indent = 2) {
  return json.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace zyncam

#endif
