// Models as text, to compare what a reader made of a file.
#ifndef ZTB_TESTS_MODEL_FILES_MODEL_TEXT_H_
#define ZTB_TESTS_MODEL_FILES_MODEL_TEXT_H_

#include <cstddef>
#include <string>

#include "providers/model/model_data.h"

namespace modelfiles {

// The model of an LP text that stands in a file "m.lp", with an End behind it.
lomu::ModelData lp(const std::string& text);
// The same for a text that is all of the file.
lomu::ModelData wholeLp(const std::string& text);
// The text with which a reader refuses all of a file; "not refused" if it does not.
std::string lpRefusal(const std::string& text);
// The same for a file, with a data file or "".
std::string fileRefusal(const std::string& file, const std::string& dataFile = "");

// A row such as "-1 <= 2 x + 1 y + 3 x*y <= 4", terms by column, equal ones added up, zeros left
// out. The objective is such as "min 2 x + 5".
std::string rowText(const lomu::ModelData& model, int row);
std::string rowText(const lomu::ModelData& model, const std::string& name);

// A column such as "0 <= x <= inf", with " integer" or " binary" behind it, and " or 0" where it is
// semi-continuous.
std::string columnText(const lomu::ModelData& model, const std::string& name);

// The names of all rows or columns, with blanks between them.
std::string rowNames(const lomu::ModelData& model);
std::string columnNames(const lomu::ModelData& model);

// A set such as "s: S1 :: x:1 y:2".
std::string setText(const lomu::ModelData& model, std::size_t number);
// The notes, a line each.
std::string notesText(const lomu::ModelData& model);

// Everything about a model but the order of its rows, columns and terms, one line each, sorted.
std::string canonicalText(const lomu::ModelData& model);

void writeFile(const std::string& file, const std::string& text);

// What a command writes to its standard output.
std::string outputOf(const std::string& command);

// Packs a file, as gzip does, into one beside it with the ending .gz.
void packFile(const std::string& file);

}  // namespace modelfiles

#endif  // ZTB_TESTS_MODEL_FILES_MODEL_TEXT_H_
