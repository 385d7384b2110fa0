#include "capturefile.h"

#include <fstream>

#include "peer/error.h"
#include "values.h"

namespace parlctl {

namespace {

using peer::Error;
using peer::Failure;

constexpr const char* kSchema = "parlctl.capture.file";

TracedRequest requestOf(const Json& object) {
  TracedRequest request;
  request.task = object.at("task").get<uint32_t>();
  request.frame = peer::fromHex(object.at("frame").get<std::string>());
  request.frameLength = object.at("frame_length").get<std::size_t>();
  if (!object.at("acknowledge").is_null()) request.ack = object.at("acknowledge").get<unsigned>();
  request.replyBytes = object.at("reply_bytes").get<std::size_t>();
  request.microseconds = object.at("microseconds").get<int64_t>();
  return request;
}

}  // namespace

std::string captureHead() {
  return Json{{"schema", kSchema}, {"schema_version", kSchemaVersion}, {"time", timeText()}}.dump() + '\n';
}

std::string captureLine(const TracedRequest& request) {
  return Json{{"time", isoText(request.milliseconds)},
              {"task", request.task},
              {"frame", peer::toHex(request.frame)},
              {"frame_length", request.frameLength},
              {"acknowledge", request.ack ? Json(*request.ack) : Json()},
              {"reply_bytes", request.replyBytes},
              {"microseconds", request.microseconds}}
             .dump() +
         '\n';
}

std::vector<TracedRequest> readCapture(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  if (!file || !std::getline(file, line))
    throw Error(Failure::Usage, "cannot read any lines of the file '" + path + "'");
  std::vector<TracedRequest> requests;
  unsigned number = 1;
  try {
    if (Json::parse(line).at("schema") != kSchema) throw Error(Failure::Usage, "not a capture");
    while (std::getline(file, line)) {
      ++number;
      if (!line.empty()) requests.push_back(requestOf(Json::parse(line)));
    }
  } catch (const std::exception&) {
    throw Error(Failure::Usage,
                path + ", line " + std::to_string(number) + ": not what 'parlctl capture' writes");
  }
  return requests;
}

}  // namespace parlctl
