/// Conversion modules as a host uses them: files and databases in, databases and files out.
#ifndef ZELK_TESTS_MODULES_CONVERSIONS_HPP
#define ZELK_TESTS_MODULES_CONVERSIONS_HPP

#include <gtest/gtest.h>

#include <string>

#include "support/files.hpp"
#include "support/folder.hpp"
#include "zelk/converter.hpp"
#include "zelk/zelk.h"

/// A manager with a module in both directions.
struct Conversions {
  explicit Conversions(const char* module, const char* option = nullptr)
      : importer(manager, module, "zelk_import"), exporter(manager, module, "zelk_export") {
    importer.SetOption(option);
    exporter.SetOption(option);
  }

  /// The name of a DBC file of this content.
  const char* opened(const std::string& content) {
    const char* db = nullptr;
    EXPECT_EQ(manager.OpenDatabase(folder.write("opened.dbc", content).c_str(), &db, 0), 0)
        << zelk_get_thread_error_text();
    return db;
  }

  /// @return what the error text says; without an import there is no `name`
  std::string import(const std::string& content) {
    name = nullptr;
    const ZelkError error =
        importer.Import("imported", &name, folder.write("in.x", content).c_str());
    const std::string text = zelk_get_thread_error_text();
    return error != 0 && text.empty() ? "an error without a text" : text;
  }
  ZelkDatabase& imported() { return *manager.GetDatabase(name); }

  /// @return what the error text says and the file
  std::string exported(const char* db) {
    const std::string file = folder.path("out.x");
    const ZelkError error = exporter.Export(db, file.c_str());
    EXPECT_EQ(std::filesystem::exists(file), error == 0);
    const std::string text = zelk_get_thread_error_text() + content_of(file);
    std::filesystem::remove(file);
    return text;
  }

  /// @return the DBC file
  std::string written(const char* db) {
    const std::string file = folder.path(std::string(db) + ".written");
    EXPECT_EQ(manager.GetDatabase(db)->Write(file.c_str()), 0);
    return content_of(file);
  }

  const Folder folder;
  ZelkWriteManager manager{HWND{}};
  ZelkImporter importer;
  ZelkExporter exporter;
  const char* name = nullptr;
};

#endif
