// The sections of an MPS file that linear models have not: products of columns, and special ordered
// sets.
#ifndef ZTB_PROVIDERS_MODEL_MPS_EXTRAS_H_
#define ZTB_PROVIDERS_MODEL_MPS_EXTRAS_H_

#include "providers/model/distinct_members.h"
#include "providers/model/mps_model.h"

namespace lomu {

class MpsProducts {
 public:
  explicit MpsProducts(MpsModel& model) : model_(model) {}

  // QUADOBJ and QSECTION: one triangle of the matrix Q of x Q x / 2.
  void beginTriangle();
  // QMATRIX: all of that matrix.
  void beginMatrix();
  // QCMATRIX: all of the matrix Q of x Q x in the row that the header names.
  void beginMatrixOfRow();
  // A line of any of them.
  void read();

 private:
  void begin(int row, double diagonal, double beside);

  MpsModel& model_;
  int row_ = 0;
  double diagonal_ = 0;  // what an entry counts for on the diagonal, and beside it
  double beside_ = 0;
};

// Lines "S1 SOS name" or "S2 SOS name", the SOS and a priority behind the name as one likes, each
// followed by lines "SOS column weight", again with or without the SOS.
class MpsSets {
 public:
  explicit MpsSets(MpsModel& model) : model_(model) {}

  void read();

 private:
  [[nodiscard]] bool beginsSet() const;
  void beginSet();
  void addMember();

  MpsModel& model_;
  DistinctMembers members_;  // of the last set
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MPS_EXTRAS_H_
