// Builds a model row by row and column by column; refuses what a model cannot hold.
#ifndef ZTB_PROVIDERS_MODEL_MODEL_BUILDER_H_
#define ZTB_PROVIDERS_MODEL_MODEL_BUILDER_H_

#include <memory>
#include <span>
#include <string>

#include "providers/model/driving.h"
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

  // Makes a symbol drive numbers of the model, as Driving::add. From the first statement on nothing
  // else can be added.
  void drive(const char* statement);

  void addSet(const char* name, int kind, std::span<const int> columns,
              std::span<const double> weights);

  [[nodiscard]] const ModelData& data() const { return data_; }
  // What symbols drive in it.
  void note(std::string text) { data_.notes.push_back(std::move(text)); }
  [[nodiscard]] const DrivenNumbers& driven() const { return driven_; }

 private:
  void checkFreeRow(const std::string& name) const;
  void requireUndriven() const;
  void checkRow(int row) const;
  void checkColumn(int column) const;

  ModelData data_;
  NameIndex<> columnNames_;
  NameIndex<> rowNames_;              // but for that of the objective, which may change
  std::unique_ptr<Driving> driving_;  // from the first statement on
  DrivenNumbers driven_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MODEL_BUILDER_H_
