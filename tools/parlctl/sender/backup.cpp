// backup: what a peer can read of the card and write again, into a file.
#include <memory>

#include "backupfile.h"
#include "commands.h"
#include "output.h"

namespace parlctl {

void addBackup(Verb& root, const Options& options) {
  const auto path = std::make_shared<std::string>();
  root.verb("backup", "Keep wall, features, tables, gamma and backup info of the card in a file")
      .operand("FILE", *path, "Where; it is replaced when all is read")
      .isFile()
      .example("backup before.json")
      .run([&options, path] {
        OutputFile file(*path);
        peer::Peer daemon = options.connect();
        const Backup backup = readBackup(daemon);
        file.write(backupText(backup));
        std::size_t bytes = 0;
        for (const auto& [name, section] : backup.sections) bytes += section.size();
        options.print({{{"file", *path}, {"sections", backup.sections.size()}, {"bytes", bytes}},
                       *path + ": " + std::to_string(backup.sections.size()) + " sections, " +
                           countText(bytes, "byte")});
      });
}

}  // namespace parlctl
