// What a user wants changed in a model before it is solved: the records of a data file, and single
// values.
#ifndef ZTB_TOOLS_MODELS_MODEL_INPUT_H_
#define ZTB_TOOLS_MODELS_MODEL_INPUT_H_

#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tools/files/exchange_file.h"
#include "tools/models/model_session.h"

namespace tool {

class ModelInput {
 public:
  explicit ModelInput(ModelSession& session);

  // Applies an RXF file: bounds, levels and marginals of variables, levels and marginals of
  // equations, then parameters that drive columns. Other symbols, and records that meet no row or
  // column, are told on standard error. Throws Failure that names the file.
  // What `fills`, unless null, gave to the model when it was opened is passed over.
  void applyFile(const std::string& path);
  void applyFile(const ExchangeFile& file, const ModelFills* fills);

  // Applies the levels of the variables of an RXF file, as a solution to begin with.
  void applyStart(const std::string& path);

  // Applies "demand[oslo]=30": a parameter that drives columns, or a variable, which is fixed.
  // Throws UsageError for a text that cannot be read, Failure for what the model does not have.
  void applySetting(const std::string& setting);

 private:
  void applyParameter(const ExchangeFile& file, const FileSymbol& source);
  void applySolution(const ExchangeFile& file, const FileSymbol& source, const ztb::Symbol& target);
  // The scratch symbol for values of a variable or equation, without records.
  ztb::Symbol emptyValues(const std::string& name, int dimension);
  void applyField(const ExchangeFile& file, const FileSymbol& source, const ztb::Symbol& target,
                  ztb::Action action, std::size_t field);
  void fixVariable(const ztb::Symbol& variable, const std::vector<const char*>& keys, double value);
  void reportUnmatched(const ExchangeFile& file, const FileSymbol& source, int count,
                       const ztb::Symbol& target) const;

  ModelSession& session_;
  // Holds values on their way into the model, under the label numbers of the session's database.
  ztb::Database scratch_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_MODELS_MODEL_INPUT_H_
