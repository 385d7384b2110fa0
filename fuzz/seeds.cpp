// What all targets share: seeds are lines of text, so that they can be read and compared. With -seeds=FILE,
// given before the corpus directory, each becomes a file in it. "#" begins a comment, "x" a line of
// hexadecimal digits, "t" a text in which "\n" is a line end.
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>

namespace {

std::string fromHex(std::string_view digits) {
  std::string bytes;
  for (; digits.size() >= 2; digits.remove_prefix(2))
    bytes += static_cast<char>(std::stoi(std::string(digits.substr(0, 2)), nullptr, 16));
  return bytes;
}

std::string fromText(std::string text) {
  for (std::size_t at = 0; (at = text.find("\\n", at)) != text.npos; ++at) text.replace(at, 2, "\n");
  return text;
}

void plant(const std::string& seeds, const std::string& directory) {
  std::ifstream lines(seeds);
  int number = 0;
  for (std::string line; std::getline(lines, line); ++number) {
    if (!line.starts_with("x ") && !line.starts_with("t ")) continue;
    const std::string bytes = line[0] == 'x' ? fromHex(line.substr(2)) : fromText(line.substr(2));
    std::ofstream(directory + "/seed" + std::to_string(number), std::ios::binary) << bytes;
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments) {
  constexpr std::string_view kSeeds = "-seeds=";
  const std::string_view first = *count > 2 ? (*arguments)[1] : "";
  if (!first.starts_with(kSeeds)) return 0;
  plant(std::string(first.substr(kSeeds.size())), (*arguments)[2]);
  (*arguments)[1] = (*arguments)[0];
  ++*arguments;
  --*count;
  return 0;
}
