// The functions of GLPK that the readers of model files call, taken from its shared library when
// the first file needs it. Nothing of GLPK is linked, so the model library works without it, LP
// and MPS files are read without it, and who ships the model library need not ship GLPK.
#ifndef ZTB_PROVIDERS_MODEL_GLPK_FUNCTIONS_H_
#define ZTB_PROVIDERS_MODEL_GLPK_FUNCTIONS_H_

#include <glpk.h>

#include <string>

namespace lomu {

// One row a function, named without its "glp_".
#define ZTB_GLPK_FUNCTIONS(ROW) \
  ROW(create_prob)              \
  ROW(get_obj_coef)             \
  ROW(get_obj_name)             \
  ROW(get_obj_dir)              \
  ROW(get_num_cols)             \
  ROW(get_col_name)             \
  ROW(get_col_kind)             \
  ROW(get_col_lb)               \
  ROW(get_col_ub)               \
  ROW(get_num_rows)             \
  ROW(get_row_name)             \
  ROW(get_row_type)             \
  ROW(get_row_lb)               \
  ROW(get_row_ub)               \
  ROW(get_mat_row)              \
  ROW(mpl_alloc_wksp)           \
  ROW(mpl_read_model)           \
  ROW(mpl_read_data)            \
  ROW(mpl_generate)             \
  ROW(mpl_build_prob)           \
  ROW(mpl_free_wksp)            \
  ROW(term_hook)                \
  ROW(error_hook)               \
  ROW(free_env)

struct GlpkFunctions {
#define ZTB_GLPK_MEMBER(name) decltype(&glp_##name) name;
  ZTB_GLPK_FUNCTIONS(ZTB_GLPK_MEMBER)
#undef ZTB_GLPK_MEMBER

  // Throws ModelError with the reason.
  static GlpkFunctions open(const std::string& library);
};

// The functions of the library that the system has. It is opened by the first call that can, and
// stays open. Throws ModelError.
const GlpkFunctions& glpk();

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_GLPK_FUNCTIONS_H_
