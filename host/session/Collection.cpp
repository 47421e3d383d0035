#include "host/session/Collection.h"

#include "host/session/nearest.h"
#include "quindle/library/QuindleFiles.h"
#include "quindle/library/entryNames.h"

#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>
#include <vector>

namespace Zamt::Host {

namespace {

/// The collection, and what lies beside one file.
class Neighbourhood {
public:
  explicit Neighbourhood(const std::string& file) {
    std::error_code unknown;
    if (!std::filesystem::exists(file, unknown)) return; // standard input has no neighbours
    const std::filesystem::path directory = std::filesystem::path(file).parent_path();
    directory_ = directory.empty() ? "." : directory.string();
  }

  bool resolve(const std::string& name, QuindleDocument& document, std::string& error) {
    if (!collection_) collection_ = scanCollection();
    if (collection_->find(name) != nullptr || directory_.empty())
      return collection_->resolver()(name, document, error);
    if (!beside_) {
      Diag dropped;
      beside_.emplace().scan(directory_, dropped);
    }
    return beside_->resolver()(name, document, error);
  }

private:
  std::string directory_; ///< Empty if there is none to look in.
  std::optional<QuindleLibrary> collection_;
  std::optional<QuindleLibrary> beside_;
};

} // namespace

QuindleLibrary scanCollection(Diag& diag) {
  std::vector<std::string> directories;
  for (const std::string& directory : quindleSearchPath()) {
    std::error_code unknown;
    if (std::filesystem::exists(directory, unknown)) directories.push_back(directory);
  }
  QuindleLibrary library;
  library.scan(directories, diag);
  return library;
}

QuindleLibrary scanCollection() {
  Diag dropped;
  return scanCollection(dropped);
}

const QuindleLibraryEntry* findInCollection(const QuindleLibrary& library, const std::string& name,
                                            Diag& diag) {
  const QuindleLibraryEntry* const found = findQuindleLoosely(library, name);
  if (found != nullptr) return found;
  diag.error(fmt::format("There is no Quindle called \"{}\".{} \"quindle list\" lists them all.", name,
                         nearestInCollection(library, name)));
  return nullptr;
}

std::string nearestInCollection(const QuindleLibrary& library, const std::string& name) {
  std::vector<std::string> names;
  for (const QuindleLibraryEntry* const entry : library.search({})) names.push_back(displayName(*entry));
  return didYouMean(name, names);
}

bool isOwn(const QuindleLibraryEntry& entry) { return isOwnQuindle(userQuindleDirectory(), entry.path); }

QuindleResolver collectionResolver(const std::string& file) {
  return [places = std::make_shared<Neighbourhood>(file)](const std::string& name, QuindleDocument& document,
                                                          std::string& error) {
    return places->resolve(name, document, error);
  };
}

bool hasOwnPlace(const std::string& name, Diag& diag) {
  const std::string path = quindleFileName(userQuindleDirectory(), name);
  std::error_code unknown;
  if (!std::filesystem::exists(path, unknown)) return true;
  QuindleLibrary there;
  Diag dropped;
  there.load(path, dropped);
  const std::string& held = there.search({}).front()->document.name;
  if (held == name) return true;
  diag.error(
      fmt::format("\"{}\" would go to \"{}\", which holds another Quindle, \"{}\". Give it a name that "
                  "differs in more than signs and blanks, or delete the other one.",
                  name, path, held));
  return false;
}

} // namespace Zamt::Host
