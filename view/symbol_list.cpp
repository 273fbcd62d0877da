// The symbols of a file.

#include <ztb/column_names.hpp>

#include "tools/text/words.h"
#include "view/api.h"

namespace view {

void answerSymbols(Question& question) {
  const std::shared_ptr<const OpenedFile> held = question.session.file(question.parameters);
  const OpenedFile& file = *held;
  formats::JsonText& answer = question.answer;
  const auto texts = [&](std::string_view name, const std::vector<std::string>& values) {
    answer.name(name);
    answer.beginArray();
    for (const std::string& value : values) answer.text(value);
    answer.endArray();
  };
  answer.beginArray();
  if (file.kind() == FileKind::model) {
    answer.endArray();
    return;
  }
  for (const tool::FileSymbol& symbol : file.exchange().symbols()) {
    // What is shown of an alias is its set.
    const tool::FileSymbol& shown = file.exchange().resolved(symbol);
    const std::vector<std::string> domains = tool::domainNames(shown);
    answer.beginObject();
    answer.name("name");
    answer.text(symbol.name);
    answer.name("type");
    answer.text(tool::typeWord(symbol.type));
    if (symbol.isAlias()) {
      answer.name("alias_of");
      answer.text(shown.name);
    }
    answer.name("dim");
    answer.count(static_cast<std::size_t>(shown.dimension));
    texts("domains", domains);
    texts("keys", ztb::keyColumns(shown.name, shown.type, domains));
    texts("values", ztb::contentColumns(shown.type));
    answer.name("records");
    answer.count(symbol.recordCount);
    answer.name("text");
    answer.text(symbol.text);
    answer.endObject();
  }
  answer.endArray();
}

}  // namespace view
