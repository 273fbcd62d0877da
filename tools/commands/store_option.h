// The option that chooses the record store, the same for every command that has it.
#ifndef ZTB_TOOLS_COMMANDS_STORE_OPTION_H_
#define ZTB_TOOLS_COMMANDS_STORE_OPTION_H_

#include <string>

#include "tools/commands/command_line.h"
#include "tools/text/words.h"

namespace tool {

// Adds --store; `store` must live as long as the command.
inline void addStoreOption(Command command, ztb::Store& store) {
  command
      .checked(
          "--store",
          [](const std::string& word) {
            return storeOfWord(word) ? std::string()
                                     : "'" + word + "' is no store, expected map, vector or trie";
          },
          [&store](const std::string& word) { store = *storeOfWord(word); },
          "What holds the records in memory: map (the default), vector or trie")
      .typeName("map|vector|trie");
}

}  // namespace tool

#endif  // ZTB_TOOLS_COMMANDS_STORE_OPTION_H_
