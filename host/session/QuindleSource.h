#pragma once

#include "files/Stop.h"
#include "quindle/core/Diag.h"
#include "quindle/core/QuindleDocument.h"

#include <functional>
#include <string>

namespace Zamt::Host {

/// The bytes of a Quindle and what diagnostics call the place they came from.
struct QuindleSource {
  std::string label; ///< The path of the file, or "<stdin>".
  std::string text;
  bool installed = false; ///< Found by name, and not in the user's directory: not to be written.
};

/// Reads an open file to its end and adds the bytes to `text`, waiting for those that are still to come.
/// Empty when everything was read, otherwise what went wrong in a sentence: so when it is stopped, and when
/// there is more than a Quindle may have.
std::string readToEnd(int file, const Stop& stop, std::string& text);

/// Reads the Quindles that a user names.
class QuindleReader {
public:
  /// Adds all of standard input to a text; empty, or what went wrong in a sentence.
  using Input = std::function<std::string(std::string& text)>;

  /// Looks at `stop`, which must outlive it, while it waits for something to read. Without an `input`, there
  /// is nothing to be had by "-".
  explicit QuindleReader(const Stop& stop, Input input = {});

  /// Reads what `which` names: standard input if it is "-", a file of that path if there is one, else the
  /// Quindle of that name in the collection. What holds a "/" or ends in ".quindle" is a path. False with an
  /// error in `diag` when it can't be read.
  bool read(const std::string& which, QuindleSource& source, Diag& diag) const;

  /// Adds all of standard input to `text`. False, with a sentence in `problem` that calls it a `what`, when
  /// there is none to be had or it can't be read.
  bool readInput(const std::string& what, std::string& text, std::string& problem) const;

  /// Reads and parses a Quindle. False, with everything that is wrong in `diag`, when it can't be used.
  bool load(const std::string& which, QuindleDocument& document, Diag& diag) const;

  /// The same, with what is probably not meant in it as warnings: for who is about to run it.
  bool loadAdvised(const std::string& which, QuindleDocument& document, Diag& diag) const;

private:
  std::string readFile(QuindleSource& source) const;

  const Stop& stop_;
  Input input_;
};

} // namespace Zamt::Host
