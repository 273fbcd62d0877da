#include "bench/hdf5_file.h"

#include <algorithm>
#include <stdexcept>

namespace bench {
namespace {

// The level that the Python package of HDF5 takes by default.
constexpr unsigned deflateLevel = 4;
constexpr hsize_t recordsOfChunk = 65'536;
constexpr std::size_t labelSize = 64;
constexpr const char* labelsName = "labels";
constexpr const char* symbolsName = "symbols";
constexpr const char* valuesName = "values";
constexpr std::array<const char*, dimension> keyNames = {"key1", "key2", "key3"};

template <class Status>
Status require(Status status, const char* what) {
  if (status < 0) {
    throw std::runtime_error(std::string("HDF5: cannot ") + what);
  }
  return status;
}

// Closes an HDF5 object when its scope is left.
class Handle {
 public:
  using Close = herr_t (*)(hid_t);
  Handle(hid_t id, Close close, const char* what) : id_(require(id, what)), close_(close) {}
  ~Handle() { close_(id_); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  operator hid_t() const { return id_; }

 private:
  hid_t id_;
  Close close_;
};

Handle labelType() {
  return {H5Tcopy(H5T_C_S1), H5Tclose, "copy a type"};
}

void writeDataset(hid_t parent, const char* name, hid_t type, const void* data, hsize_t count) {
  const Handle space(H5Screate_simple(1, &count, nullptr), H5Sclose, "make a space");
  const Handle properties(H5Pcreate(H5P_DATASET_CREATE), H5Pclose, "make properties");
  const hsize_t chunk = std::clamp<hsize_t>(count, 1, recordsOfChunk);
  require(H5Pset_chunk(properties, 1, &chunk), "set the chunk size");
  require(H5Pset_shuffle(properties), "set shuffling");
  require(H5Pset_deflate(properties, deflateLevel), "set deflation");
  const Handle dataset(H5Dcreate2(parent, name, type, space, H5P_DEFAULT, properties, H5P_DEFAULT),
                       H5Dclose, "make a dataset");
  require(H5Dwrite(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, data), "write a dataset");
}

// Reads a whole dataset; `room(count)` gives the place for it.
template <class Room>
void readDataset(hid_t parent, const char* name, hid_t type, Room&& room) {
  const Handle dataset(H5Dopen2(parent, name, H5P_DEFAULT), H5Dclose, "open a dataset");
  const Handle space(H5Dget_space(dataset), H5Sclose, "get a space");
  const hssize_t count = require(H5Sget_simple_extent_npoints(space), "get a record count");
  require(
      H5Dread(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, room(static_cast<std::size_t>(count))),
      "read a dataset");
}

}  // namespace

Hdf5File::Hdf5File(const std::string& file, Mode mode)
    : file_(mode == Mode::create ? H5Fcreate(file.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT)
                                 : H5Fopen(file.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT)) {
  require(file_, "open a file");
  if (mode == Mode::create) {
    const Handle group(H5Gcreate2(file_, symbolsName, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                       H5Gclose, "make a group");
  }
}

Hdf5File::~Hdf5File() {
  H5Fclose(file_);
}

void Hdf5File::writeLabels(const std::vector<std::string>& labels) {
  const Handle type = labelType();
  require(H5Tset_size(type, labelSize), "set a size");
  std::vector<char> text(labels.size() * labelSize);
  for (std::size_t i = 0; i < labels.size(); ++i) {
    std::ranges::copy(labels[i], text.begin() + static_cast<std::ptrdiff_t>(i * labelSize));
  }
  writeDataset(file_, labelsName, type, text.data(), labels.size());
}

std::vector<std::string> Hdf5File::readLabels() const {
  const Handle type = labelType();
  require(H5Tset_size(type, labelSize), "set a size");
  std::vector<char> text;
  readDataset(file_, labelsName, type, [&](std::size_t count) {
    text.resize(count * labelSize);
    return text.data();
  });
  std::vector<std::string> labels;
  for (std::size_t at = 0; at < text.size(); at += labelSize) {
    labels.emplace_back(text.data() + at);
  }
  return labels;
}

void Hdf5File::writeSymbol(const std::string& name, const Columns& columns) {
  const Handle symbols(H5Gopen2(file_, symbolsName, H5P_DEFAULT), H5Gclose, "open a group");
  const Handle group(H5Gcreate2(symbols, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                     H5Gclose, "make a group");
  for (std::size_t d = 0; d < dimension; ++d) {
    writeDataset(group, keyNames[d], H5T_NATIVE_INT, columns.keys[d].data(),
                 columns.keys[d].size());
  }
  writeDataset(group, valuesName, H5T_NATIVE_DOUBLE, columns.values.data(), columns.values.size());
}

std::vector<std::string> Hdf5File::symbolNames() const {
  const Handle symbols(H5Gopen2(file_, symbolsName, H5P_DEFAULT), H5Gclose, "open a group");
  std::vector<std::string> names;
  require(H5Literate(
              symbols, H5_INDEX_NAME, H5_ITER_NATIVE, nullptr,
              [](hid_t /*group*/, const char* name, const H5L_info_t* /*info*/, void* list) {
                static_cast<std::vector<std::string>*>(list)->emplace_back(name);
                return herr_t{0};
              },
              &names),
          "list a group");
  return names;
}

void Hdf5File::readSymbol(const std::string& name, Columns& columns) const {
  const Handle symbols(H5Gopen2(file_, symbolsName, H5P_DEFAULT), H5Gclose, "open a group");
  const Handle group(H5Gopen2(symbols, name.c_str(), H5P_DEFAULT), H5Gclose, "open a group");
  for (std::size_t d = 0; d < dimension; ++d) {
    readDataset(group, keyNames[d], H5T_NATIVE_INT, [&](std::size_t count) {
      columns.keys[d].resize(count);
      return columns.keys[d].data();
    });
  }
  readDataset(group, valuesName, H5T_NATIVE_DOUBLE, [&](std::size_t count) {
    columns.values.resize(count);
    return columns.values.data();
  });
}

}  // namespace bench
