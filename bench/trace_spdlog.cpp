#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>

#include "rounds.h"
#include "trace_writers.h"

namespace bench {

double spdlogLines(const std::filesystem::path& file, int count, bool echo) {
  spdlog::logger log("bench", std::make_shared<spdlog::sinks::basic_file_sink_mt>(file.string(), true));
  if (echo) log.sinks().push_back(std::make_shared<spdlog::sinks::stdout_sink_mt>());
  log.set_level(spdlog::level::trace);
  log.flush_on(spdlog::level::trace);
  log.set_pattern("[%m/%d/%Y %H:%M:%S.%e pid=%P uuid=0x0] %l:%v");
  const double start = nowUs();
  for (int i = 0; i < count; ++i) {
    const TraceValues values = traceValues(i);
    log.info("{} : {} revise = {}, iDataLen = {}, usCheckout={}", "trace_spdlog", __LINE__, values.revise,
             values.length, values.checksum);
  }
  return (nowUs() - start) * 1e3 / count;
}

}  // namespace bench
