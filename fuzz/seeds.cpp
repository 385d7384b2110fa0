// What all targets share: with -seeds=FILE, given before the corpus directory, seeds become files in it.
// Those of the tables are the ones for the target of the file's name; others are lines of text in the file,
// which may be missing: "#" begins a comment, "x" a line of hexadecimal digits, "t" a text in which "\n" is a
// line end.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "tableseeds.h"

namespace {

std::string fromText(std::string text) {
  for (std::size_t at = 0; (at = text.find("\\n", at)) != text.npos; ++at) text.replace(at, 2, "\n");
  return text;
}

void plant(const std::filesystem::path& seeds, const std::string& directory) {
  int number = 0;
  const auto add = [&](const auto& bytes) {
    std::ofstream file(directory + "/seed" + std::to_string(number++), std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  };
  for (const auto& bytes : fuzz::tableSeeds(seeds.stem().string())) add(bytes);
  std::ifstream lines(seeds);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("x ")) add(peer::fromHex(line.substr(2)));
    if (line.starts_with("t ")) add(fromText(line.substr(2)));
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments) {
  constexpr std::string_view kSeeds = "-seeds=";
  const std::string_view first = *count > 2 ? (*arguments)[1] : "";
  if (!first.starts_with(kSeeds)) return 0;
  plant(first.substr(kSeeds.size()), (*arguments)[2]);
  (*arguments)[1] = (*arguments)[0];
  ++*arguments;
  --*count;
  return 0;
}
