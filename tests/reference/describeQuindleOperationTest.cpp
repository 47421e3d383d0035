#include "quindle/plan/QuindleOperation.h"

#include <gtest/gtest.h>

namespace Zamt {
namespace {

TEST(DescribeQuindleOperation, PageTellsCostNeedsDefaultsAndTheObjectBuilt) {
  EXPECT_EQ(
      describeQuindleOperation("class"),
      "class - Keep only the points of the given classes.\n"
      "\n"
      "Reads the classification of each point and keeps the ones whose class is named here. Classes may "
      "be given by name when the data carries a label set, or by number when it does not. This is the "
      "condition almost every editing Quindle starts with, because it is what stops an edit from "
      "touching data that was already correct.\n"
      "\n"
      "Cost: cheap, reads one value per point. Conditions are reordered so the cheap ones run first, so "
      "writing this alongside cheaper ones costs less than it looks.\n"
      "\n"
      "Arguments:\n"
      "  classes (needed)\n"
      "      Which classes to keep, separated by commas. Names when the data has a label set, otherwise "
      "the numbers.\n"
      "  field (optional, normally \"Classification\")\n"
      "      The field holding the classification. Only needed when the data keeps it somewhere other "
      "than the usual Classification.\n"
      "\n"
      "Builds: Selection/BrushFilterByClass\n");
  EXPECT_EQ(describeQuindleOperation("nothing"), "");
}

TEST(DescribeQuindleOperation, CostsAreCalledByTheirClass) {
  std::string costs;
  for (const QuindleOperation& operation : allQuindleOperations()) {
    const std::string page = describeQuindleOperation(operation.name);
    const std::size_t from = page.find("Cost: ");
    costs += operation.name + ' ' + page.substr(from, page.find('.', from) - from) + '\n';
  }
  EXPECT_EQ(costs, "class Cost: cheap, reads one value per point\n"
                   "field Cost: cheap, reads one value per point\n"
                   "below Cost: moderate, works per point\n"
                   "above Cost: moderate, works per point\n"
                   "vertical Cost: cheap, reads one value per point\n"
                   "neighbours Cost: expensive, searches around every point\n"
                   "inside Cost: free\n"
                   "within Cost: free\n"
                   "expr Cost: moderate, works per point\n");
}

TEST(DescribeQuindleOperation, ListingIsOfThoseWhoseCreatorBeginsAsAsked) {
  EXPECT_EQ(listQuindleOperations("Selection/BrushFilterByTin"),
            "below(surface, [margin])  -  Keep the points under a triangulated surface.\n"
            "above(surface, [margin])  -  Keep the points over a triangulated surface.\n");
  EXPECT_EQ(listQuindleOperations("Selection/"), listQuindleOperations(""));
  EXPECT_NE(listQuindleOperations("").find("\nvertical([tolerance], [field])  -  "), std::string::npos);
  EXPECT_EQ(listQuindleOperations("below"), "");
}

} // namespace
} // namespace Zamt
