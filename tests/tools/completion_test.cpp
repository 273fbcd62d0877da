// What shells offer, and man shows.
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/tools/program.h"

namespace {

using tooltest::ProgramTest;

class CompletionTest : public ProgramTest {
 protected:
  // What a shell command prints, run in the folder of the test.
  std::string shell(const std::string& command) const {
    const int status = std::system(
        ("cd '" + path(".") + "' && { " + command + "; } > printed 2> errors < /dev/null").c_str());
    EXPECT_EQ(WEXITSTATUS(status), 0) << read("errors");
    EXPECT_EQ(read("errors"), "");
    return read("printed");
  }

  // What bash offers for the last of these words, each on a line.
  std::string offered(const std::string& words) const {
    write("completion", ztbFine({"completion", "bash"}));
    return shell("bash --norc -c 'source ./completion; COMP_WORDS=(" + words +
                 "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _ztb; printf \"%s\\n\" "
                 "\"${COMPREPLY[@]}\"'");
  }
};

TEST_F(CompletionTest, BashCompletesCommandsOptionsAndChoices) {
  EXPECT_EQ(offered("ztb p"), "pivot\nplot\n");
  EXPECT_EQ(offered("ztb s"), "show\nsql\nsolve\nsweep\n");
  EXPECT_EQ(offered("ztb show f.rxf --s"), "--slice\n--sort\n--store\n");
  EXPECT_EQ(offered("ztb show f.rxf s --store \"\""), "map\nvector\ntrie\n");
  EXPECT_EQ(offered("ztb show f.rxf s --store = t"), "trie\n");
  EXPECT_EQ(offered("ztb show f.rxf s --sort \"\""),
            "value\nlevel\nmarginal\nlower\nupper\nscale\n");
  EXPECT_EQ(offered("ztb pivot f.rxf s --field m"), "marginal\n");
  EXPECT_EQ(offered("ztb completion \"\""), "bash\nzsh\nfish\n");
  EXPECT_EQ(offered("ztb help s"), "show\nsql\nsolve\nsweep\n");
  // Nothing of its own, so that bash offers files.
  EXPECT_EQ(offered("ztb show \"\""), "\n");
  EXPECT_EQ(offered("ztb import o.rxf --from \"\""), "\n");
}

// A shell on a terminal completes the names of files, which are not the function's.
TEST_F(CompletionTest, BashCompletesFiles) {
  write("completion", ztbFine({"completion", "bash"}));
  write("onlyfile.csv", "");
  std::filesystem::create_directory(path("onlyfolder"));
  write("type.py",
        "import os, pty\n"
        "pid, terminal = pty.fork()\n"
        "if pid == 0:\n"
        "    os.execvp('bash', ['bash', '--norc', '-i'])\n"
        "def typed(keys, seen):\n"
        "    os.write(terminal, keys)\n"
        "    shown = b''\n"
        "    while seen not in shown:\n"
        "        shown += os.read(terminal, 4096)\n"
        "typed(b\"source ./completion; PS1=rea''dy\\n\", b'ready')\n"
        "typed(b'ztb import o.rxf --from onlyfi\\t', b'onlyfile.csv')\n"
        "typed(b'\\x15ztb export f.rxf --to onlyfi\\t', b'onlyfile.csv')\n"
        "typed(b'\\x15ztb sweep m.lp --parts onlyfo\\t', b'onlyfolder')\n"
        "print('all three')\n");
  EXPECT_EQ(shell("timeout 120 /usr/bin/python3 type.py"), "all three\n");
}

TEST_F(CompletionTest, FishCompletesCommandsOptionsAndChoices) {
  write("ztb.fish", ztbFine({"completion", "fish"}));
  const auto offeredFor = [&](const std::string& words) {
    return shell("HOME=$PWD fish -N -c \"source ztb.fish; complete -C '" + words +
                 "'\" | cut -f1 | sort");
  };
  EXPECT_EQ(offeredFor("ztb s"), "show\nsolve\nsql\nsweep\n");
  EXPECT_EQ(offeredFor("ztb show f.rxf --s"), "--slice\n--sort\n--store\n");
  EXPECT_EQ(offeredFor("ztb show f.rxf s --store "), "map\ntrie\nvector\n");
  write("onlyfile.csv", "");
  std::filesystem::create_directory(path("onlyfolder"));
  EXPECT_EQ(offeredFor("ztb import o.rxf --from onlyfi"), "onlyfile.csv\n");
  EXPECT_EQ(offeredFor("ztb export f.rxf --to onlyfi"), "onlyfile.csv\n");
  EXPECT_EQ(offeredFor("ztb aggregate f.rxf s --out onlyfi"), "onlyfile.csv\n");
  EXPECT_EQ(offeredFor("ztb sweep m.lp --parts onlyfo"), "onlyfolder/\n");
}

// A shell on a terminal, into which words and the tabulator are typed.
TEST_F(CompletionTest, ZshCompletesCommandsAndOptions) {
  write("_ztb", ztbFine({"completion", "zsh"}));
  write("type.zsh",
        "zmodload zsh/zpty\n"
        "zpty z zsh -f -i\n"
        "zpty -w z \"PS1=; fpath=($PWD \\$fpath); autoload -Uz compinit; compinit -u -D; "
        "echo rea''dy\"\n"
        "zpty -r z seen '*ready*'\n"
        "zpty -w -n z $'ztb show f.rxf --di\\t'\n"
        "zpty -r z seen '*--digits*' && print options\n"
        "zpty -w -n z $'\\x15ztb so\\t'\n"
        "zpty -r z seen '*solve*' && print commands\n"
        "zpty -w -n z $'\\x15ztb import o.rxf --from onlyfi\\t'\n"
        "zpty -r z seen '*onlyfile.csv*' && print files\n");
  write("onlyfile.csv", "");
  EXPECT_EQ(shell("timeout 120 zsh -f type.zsh"), "options\ncommands\nfiles\n");
}

// man tells of what roff does not understand.
TEST_F(CompletionTest, ManShowsThePage) {
  write("ztb.1", ztbFine({"manual"}));
  const std::string page = shell("MANWIDTH=80 man --warnings -E UTF-8 -l ztb.1 | col -b");
  for (const char* text :
       {"ztb show FILE SYMBOL [options]", "--slice PATTERNS",
        "ztb show diet.rxf nutrition --slice 'wheat*,*' --head 20", "ztb solve MODEL [options]",
        "0 fine, 1 failed", "ENVIRONMENT", "NO_COLOR", "TMPDIR", "ZTB_DUCKDB", "ZTB_PYTHON",
        "ZTB_RSVG", "ztb merge FILE ... OUT [options]", "ztb sql FILE ... QUERY [options]",
        "ztb export FILE [SYMBOL ...] [options]", "ztb view FILE [FILE] [options]"}) {
    EXPECT_NE(page.find(text), std::string::npos) << text;
  }
}

}  // namespace
