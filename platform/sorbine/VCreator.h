#pragma once

#include "rethold/Export.h"
#include "rethold/Intercube.h"
#include "rethold/Pointer.h"
#include "sorbine/VAccept.h"
#include "sorbine/VManagedObject.h"
#include "sorbine/VObject.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Zamt {

/// What is to be known about a creator beside its name.
struct QUINDLE_PLATFORM_API VCreatorInfo {
  int rank = 0; ///< From 2000 mature, from 0 in use, below 0 experimental, below -1000 unfinished.
  std::string shortHelp;
  std::string longHelp;
  std::vector<VAcceptInfo> accepts; ///< How its objects can read others.
};

/// Something that the user can pick from a list in order to have it made.
class QUINDLE_PLATFORM_API VInputCreatorBase : public VManagedObject {
public:
  VInputCreatorBase(std::string category, std::string identifier, VCreatorInfo info);
  ~VInputCreatorBase() override;

  const std::string& category() const { return category_; }
  const std::string& identifier() const { return identifier_; }
  const std::string& shortHelp() const { return info_.shortHelp; }
  const std::string& longHelp() const { return info_.longHelp; }
  const std::vector<VAcceptInfo>& accepts() const { return info_.accepts; }

  bool isA(Rethold::TypeId type) const override;

protected:
  Rethold::TypeId kind() const override;

private:
  std::string category_;
  std::string identifier_;
  VCreatorInfo info_;
};

/// Makes objects of the scene. Its name in the graph is "Category/Identifier".
class QUINDLE_PLATFORM_API VCreatorBase : public VInputCreatorBase {
public:
  /// What makes one new object, which is in no graph yet; null to refuse.
  using Factory = std::function<Rethold::StrongPtr<VObject>()>;

  VCreatorBase(std::string category, std::string identifier, VCreatorInfo info, Factory factory);
  ~VCreatorBase() override;

  /// Makes an object and puts it into the graph under `name` (the identifier if that is empty), or under the
  /// next free name if it is taken. Null if the factory refuses. The caller initialises the object.
  Rethold::StrongPtr<VObject> create(const std::string& name, const Rethold::Intercube& context);

  bool isA(Rethold::TypeId type) const override;

private:
  Factory factory_;
};

/// Registers a creator under "category/identifier". If there is one of that name already, it stays, and
/// comes back. To withdraw a creator, call its `remove`.
QUINDLE_PLATFORM_API Rethold::StrongPtr<VCreatorBase> registerCreator(const std::string& category,
                                                                      const std::string& identifier,
                                                                      VCreatorInfo info,
                                                                      VCreatorBase::Factory factory);

/// The same, for a class of objects with a default constructor.
template <class Object>
Rethold::StrongPtr<VCreatorBase> registerCreator(const std::string& category, const std::string& identifier,
                                                 VCreatorInfo info) {
  return registerCreator(category, identifier, std::move(info), [] { return std::make_shared<Object>(); });
}

} // namespace Zamt
