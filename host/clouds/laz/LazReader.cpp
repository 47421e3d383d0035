#include "host/clouds/laz/LazReader.h"

#include "host/clouds/las/LasCompatibility.h"
#include "host/clouds/laz/LazDecoder.h"

#include <algorithm>
#include <vector>

namespace Zamt::Host {

namespace {

/// Room for values is made for this many points at a time: a damaged chunk may say more points than there
/// could be memory for, and ends long before.
constexpr std::size_t pointsAtOnce = std::size_t{1} << 18;

constexpr std::size_t mostComponents = 3;

/// Parts of a point that are decoded together into one array.
struct Slot {
  std::size_t firstPart = 0;
  std::size_t parts = 0;
  std::size_t stride = 0;
  bool isExpected = false;
  bool isDecoded = false; ///< For the block that the reader is at.
  std::vector<std::byte> values;
};

/// Where a component of a field is.
struct Place {
  std::size_t slot = 0;
  std::size_t offset = 0; ///< From the start of a point's values in the slot.
};

class LazReader : public ColumnReader {
public:
  explicit LazReader(const LazFile& file)
      : file_(file), decoder_(file.coding), columns_(file.coding.parts.size()) {
    if (file.coding.isLayered())
      layOut();
    else
      slots_.push_back({0, file.coding.parts.size(), file.coding.recordLength, true, false, {}});
  }

  void expect(std::span<const ColumnKey> columns) override {
    for (const ColumnKey key : columns) slots_[placeOf(key).slot].isExpected = true;
  }

  bool read(std::size_t block, ColumnKey key, StoredColumn& column, std::string& problem) override {
    if (block != block_)
      for (Slot& slot : slots_) slot.isDecoded = false;
    block_ = block;
    if (file_.contexts && key.field == file_.layout.classField)
      if (const auto kept = file_.contexts->classes(block, points()); !kept.empty()) {
        column = {kept.data(), 1, FieldType::U8};
        return true;
      }
    const Place place = placeOf(key);
    if (!slots_[place.slot].isDecoded && !decode(place.slot, problem)) return false;
    const LasField& field = file_.layout.fields[key.field];
    const Slot& slot = slots_[place.slot];
    column = {slot.values.data() + place.offset, slot.stride, field.type, field.shift, field.bits};
    if (key.field == file_.layout.classField && file_.layout.secondClassAt) {
      classes_ = compatibleClasses(slot.values.data(), points(), slot.stride, *file_.layout.secondClassAt);
      column = {std::as_bytes(std::span(classes_)).data(), 1, FieldType::U8};
    }
    return true;
  }

private:
  std::size_t points() const { return file_.chunks.chunks[block_].points; }

  /// A slot for every part that holds fields, and for the bytes of every extra field.
  void layOut() {
    const std::vector<LazPart>& parts = file_.coding.parts;
    std::vector<std::size_t> slotOf(parts.size(), parts.size());
    places_.resize(file_.layout.fields.size() * mostComponents);
    for (std::size_t number = 0; number < file_.layout.fields.size(); ++number) {
      const LasField& field = file_.layout.fields[number];
      for (unsigned component = 0; component < field.components; ++component) {
        const std::size_t offset = field.offset + component * sizeOf(field.type);
        const std::size_t first = file_.coding.partAt(offset);
        const std::size_t last = file_.coding.partAt(offset + sizeOf(field.type) - 1);
        if (slotOf[first] == parts.size()) {
          slotOf[first] = slots_.size();
          const std::size_t stride = parts[last].offset + parts[last].size - std::size_t{parts[first].offset};
          slots_.push_back({first, last - first + 1, stride, false, false, {}});
        }
        places_[number * mostComponents + component] = {slotOf[first], offset - parts[first].offset};
      }
    }
  }

  Place placeOf(ColumnKey key) const {
    if (!places_.empty()) return places_[key.field * mostComponents + key.component];
    const LasField& field = file_.layout.fields[key.field];
    return {0, field.offset + key.component * sizeOf(field.type)};
  }

  /// Decodes a slot of the block, and with it those that are expected, since all need the first layer.
  bool decode(std::size_t wanted, std::string& problem) {
    std::vector<Slot*> slots;
    for (std::size_t number = 0; number < slots_.size(); ++number)
      if (number == wanted || (slots_[number].isExpected && !slots_[number].isDecoded))
        slots.push_back(&slots_[number]);
    std::string damage;
    if (!decode(slots, damage)) {
      problem = chunkDamaged(file_.path, block_, file_.chunks.chunks[block_].offset, damage);
      return false;
    }
    for (Slot* const slot : slots) slot->isDecoded = true;
    return true;
  }

  bool decode(const std::vector<Slot*>& slots, std::string& damage) {
    const std::span<const std::byte> chunk = file_.chunk(block_);
    const std::span<const std::uint8_t> known = knownContexts(slots);
    bool areKept = false;
    for (std::size_t done = 0; done < points();) {
      const std::size_t count = std::min(points() - done, pointsAtOnce);
      for (Slot* const slot : slots) place(*slot, done, count);
      if (done == 0 && !decoder_.begin(chunk, points(), columns_, false, damage, known)) return false;
      if (done == 0) areKept = file_.contexts && decoder_.decodesClassContexts();
      if (areKept) contexts_.resize(done + count);
      if (!decoder_.next(count, columns_, damage, areKept ? &contexts_[done] : nullptr)) return false;
      done += count;
    }
    std::ranges::fill(columns_, LazColumn{});
    if (!decoder_.finish(damage)) return false;
    if (areKept) file_.contexts->keep(block_, contexts_, decodedClasses(slots));
    return true;
  }

  Slot* classSlot() { return &slots_[placeOf({file_.layout.classField, 0}).slot]; }

  /// The classes of the block if they are among what was decoded.
  std::span<const std::byte> decodedClasses(const std::vector<Slot*>& slots) {
    if (std::ranges::find(slots, classSlot()) == slots.end()) return {};
    return std::span(classSlot()->values).first(points());
  }

  /// What was kept of an earlier decoding of the block, if no more than that is needed.
  std::span<const std::uint8_t> knownContexts(const std::vector<Slot*>& slots) {
    if (!file_.contexts || slots.size() != 1 || slots[0] != classSlot()) return {};
    if (!file_.contexts->has(block_)) return {};
    contexts_.resize(points());
    file_.contexts->read(block_, contexts_);
    return contexts_;
  }

  /// Has the parts of a slot decoded behind the points that are.
  void place(Slot& slot, std::size_t done, std::size_t count) {
    const std::size_t needed = (done + count) * slot.stride;
    if (slot.values.size() < needed) slot.values.resize(needed);
    const std::vector<LazPart>& parts = file_.coding.parts;
    for (std::size_t part = slot.firstPart; part < slot.firstPart + slot.parts; ++part) {
      const std::size_t within = parts[part].offset - std::size_t{parts[slot.firstPart].offset};
      columns_[part] = {slot.values.data() + done * slot.stride + within, slot.stride};
    }
  }

  const LazFile& file_;
  LazDecoder decoder_;
  std::vector<LazColumn> columns_;
  std::vector<Slot> slots_;
  std::vector<Place> places_;          ///< Of three components of each field; empty if there is one slot.
  std::vector<std::uint8_t> contexts_; ///< What the first layer says to that of classes.
  std::vector<std::uint8_t> classes_;  ///< Of points that say them in two places.
  std::size_t block_ = ~std::size_t{0};
};

} // namespace

std::unique_ptr<ColumnReader> makeLazReader(const LazFile& file) { return std::make_unique<LazReader>(file); }

} // namespace Zamt::Host
