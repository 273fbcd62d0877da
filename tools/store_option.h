// The option that chooses the record store, the same for every command that has it.
#ifndef ZTB_TOOLS_STORE_OPTION_H_
#define ZTB_TOOLS_STORE_OPTION_H_

#include <CLI/CLI.hpp>
#include <string>

#include "tools/words.h"

namespace tool {

// Adds --store; `store` must live as long as the command.
inline void addStoreOption(CLI::App* command, ztb::Store& store) {
  command
      ->add_option_function<std::string>(
          "--store", [&store](const std::string& word) { store = *storeOfWord(word); },
          "What holds the records in memory: map (the default), vector or trie")
      ->type_name("STORE")
      ->check(CLI::Validator(
          [](const std::string& word) {
            return storeOfWord(word) ? std::string()
                                     : "'" + word + "' is no store, expected map, vector or trie";
          },
          ""));
}

}  // namespace tool

#endif  // ZTB_TOOLS_STORE_OPTION_H_
