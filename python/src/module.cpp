// The extension module: what the package is made of that is not Python.

#include "decoding.hpp"
#include "python.hpp"

NB_MODULE(_zelk, module) {
  using namespace zelk::python;
  module.doc() = "The libraries' side of the package zelk.";
  module.attr("VERSION") = ZELK_PYTHON_VERSION;
  // Objects that a program holds until it ends are no leaks.
  nb::set_leak_warnings(false);
  register_failures();
  bind_nodes(module);
  bind_signals(module);
  bind_messages(module);
  bind_edit(module);
  bind_findings(module);
  bind_files(module);
  bind_database(module);
  bind_table(module);
  bind_decoding(module);
  bind_log(module);
  bind_arrays(module);
  bind_frames(module);
}
