// Builds a model row by row and column by column; refuses what a model cannot hold.
#ifndef ZTB_PROVIDERS_MODEL_MODEL_BUILDER_H_
#define ZTB_PROVIDERS_MODEL_MODEL_BUILDER_H_

#include <string>

#include "providers/model/model_data.h"
#include "providers/model/name_index.h"

namespace lomu {

// Every function throws ModelError and leaves the model as it was when it refuses.
class ModelBuilder {
 public:
  ModelBuilder() = default;
  // Takes a model that was read; names that stand twice are refused.
  explicit ModelBuilder(ModelData data);

  void setObjective(const char* name, bool maximize, double constant);
  int addColumn(const char* name, int kind, double lower, double upper);
  int addRow(const char* name, int type, double rhs, double range);
  void addTerm(int row, int column, double value);
  void addProduct(int row, int column1, int column2, double value);

  [[nodiscard]] const ModelData& data() const { return data_; }

 private:
  void checkFreeRow(const std::string& name) const;
  void checkRow(int row) const;
  void checkColumn(int column) const;

  ModelData data_;
  NameIndex<> columnNames_;
  NameIndex<> rowNames_;  // but for that of the objective, which may change
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MODEL_BUILDER_H_
