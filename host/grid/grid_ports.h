// What the grid needs of the machine: how wide a text is, the clipboard, the printer, the dialog of the
// registered styles. The defaults here touch no machine: a command line and tests work with them.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "host/grid/print_job.h"

namespace banddesk::host {

class Looks;

class TextMeasure {
 public:
  virtual ~TextMeasure() = default;
  // In pixels, a single line without margins. All digits of a font are equally wide.
  virtual double width(std::string_view text, const GridFont& font) const = 0;
};

// The same advance for every character: three quarters of the font's size.
class FixedAdvances final : public TextMeasure {
 public:
  double width(std::string_view text, const GridFont& font) const override;
};

class ClipboardPort {
 public:
  virtual ~ClipboardPort() = default;
  virtual void setText(std::string text) = 0;
};

class KeptClipboard final : public ClipboardPort {
 public:
  void setText(std::string text) override { Text = std::move(text); }
  std::string Text;
};

class PrinterPort {
 public:
  virtual ~PrinterPort() = default;
  // With the print dialog; false if the user cancelled there.
  virtual bool print(const PrintJob& job) = 0;
};

class KeptPrinter final : public PrinterPort {
 public:
  bool print(const PrintJob& job) override {
    Last = job;
    return true;
  }
  PrintJob Last;
};

class StyleDialogPort {
 public:
  virtual ~StyleDialogPort() = default;
  // Modal: the user edits the registered styles.
  virtual void run(Looks& styles) = 0;
};

class NoStyleDialog final : public StyleDialogPort {
 public:
  void run(Looks&) override {}
};

struct GridPorts {
  std::shared_ptr<TextMeasure> measure = std::make_shared<FixedAdvances>();
  std::shared_ptr<ClipboardPort> clipboard = std::make_shared<KeptClipboard>();
  std::shared_ptr<PrinterPort> printer = std::make_shared<KeptPrinter>();
  std::shared_ptr<StyleDialogPort> styleDialog = std::make_shared<NoStyleDialog>();
};

}  // namespace banddesk::host
