#include "host/objects/registerHostObjects.h"
#include "quindle/reference/QuindleRegistry.h"

#include "sorbine/VCreator.h"

#include <gtest/gtest.h>

namespace Zamt::Testing {
namespace {

struct HelpOfOutputs : VOutputIterator {
  bool apply(Rethold::TypeId /*type*/, const Rethold::StrongPtr<VSlot>& slot) override {
    helps.emplace_back(slot->name(), slot->help());
    return true;
  }
  std::vector<std::pair<std::string, std::string>> helps;
};

TEST(Help, EveryObjectAndEverySlotSaysWhatItIsForInASentence) {
  const Stop goOn;
  Host::registerHostObjects({goOn});
  std::size_t objects = 0;
  for (const QuindleRegistryItem& item : collectQuindleRegistry(LowestRank)) {
    if (item.kind != 1) continue;
    ++objects;
    SCOPED_TRACE(item.name);
    EXPECT_TRUE(item.summary.ends_with('.')) << item.summary;
    EXPECT_NE(item.summary, item.description) << "A page that says no more than its line.";
    EXPECT_EQ(listQuindleRegistry(item.category, 1000, LowestRank).find("..."), std::string::npos)
        << "A summary is too long for a line of the listing.";
    const auto object = VManagedObject::find<VCreatorBase>(item.name)->create("helped", Rethold::Intercube());
    ASSERT_NE(object, nullptr);
    HelpOfOutputs slots;
    object->iterate_outputs(slots);
    object->iterate_inputs([&](const Rethold::StrongPtr<VSlot>& slot, int /*index*/) {
      slots.helps.emplace_back(slot->name(), slot->help());
      return true;
    });
    for (const auto& [slot, help] : slots.helps)
      EXPECT_TRUE(help.ends_with('.') && help.size() > 10) << slot << ": " << help;
  }
  EXPECT_EQ(objects, 16U);
  VManagedObject::clear();
}

} // namespace
} // namespace Zamt::Testing
