// Prints a page about registers or flash: parlend_mappages registers > docs/registers.md
#include <cstdio>
#include <string_view>

#include "mappages/mappages.h"

int main(int argc, char** argv) {
  const std::string_view page = argc == 2 ? argv[1] : "";
  if (page != "registers" && page != "flash") {
    std::fputs("usage: parlend_mappages registers|flash\n", stderr);
    return 2;
  }
  const std::string text = page == "flash" ? mappages::flashPage() : mappages::registersPage();
  return std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0 ? 1 : 0;
}
