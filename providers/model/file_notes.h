// Notes on a file that is read: what a user is to be told though the file is taken.
#ifndef ZTB_PROVIDERS_MODEL_FILE_NOTES_H_
#define ZTB_PROVIDERS_MODEL_FILE_NOTES_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lomu {

// The first note of each subject, with its place, and how many more there were.
class FileNotes {
 public:
  explicit FileNotes(std::string file) : file_(std::move(file)) {}

  // `subject` tells which notes are of one kind; it has to live on.
  void add(std::string_view subject, std::size_t line, std::size_t column,
           const std::string& text) {
    for (Note& note : notes_) {
      if (note.subject != subject) continue;
      ++note.further;
      return;
    }
    notes_.push_back(
        {subject, file_ + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + text,
         0});
  }
  // Whether a note of the subject would only be counted, so that its text need not be made.
  [[nodiscard]] bool count(std::string_view subject) {
    for (Note& note : notes_) {
      if (note.subject != subject) continue;
      ++note.further;
      return true;
    }
    return false;
  }

  [[nodiscard]] std::vector<std::string> texts() const {
    std::vector<std::string> texts;
    for (const Note& note : notes_) {
      texts.push_back(note.further == 0
                          ? note.text
                          : note.text + " (and " + std::to_string(note.further) + " more)");
    }
    return texts;
  }

 private:
  struct Note {
    std::string_view subject;
    std::string text;
    std::size_t further;
  };

  std::string file_;
  std::vector<Note> notes_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_FILE_NOTES_H_
