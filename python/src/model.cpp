#include "model.hpp"

#include "codec.hpp"
#include "python.hpp"

namespace zelk::python {

Model::Model() = default;

Model::Model(const char* file_name) : ZelkDatabase(file_name) {}

Model::Model(const Model& other)
    : ZelkDatabase(other),
      std::enable_shared_from_this<Model>(other),
      file(other.file),
      encoding(other.encoding) {}

Model::~Model() = default;

void Model::release(Model* model) {
  const nb::gil_scoped_acquire lock;
  delete model;
}

}  // namespace zelk::python
