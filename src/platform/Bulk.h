#pragma once

// Brackets bulk work on a grid or a node collection (anything with beginBulk and endBulk), so
// that its views hear one reset for the whole work, also when a run-time error ends it half way.
namespace vkl {

template <typename Model>
class BulkScope {
  public:
    explicit BulkScope(Model& model) : model_(model) { model_.beginBulk(); }
    ~BulkScope() { model_.endBulk(); }
    BulkScope(const BulkScope&) = delete;
    BulkScope& operator=(const BulkScope&) = delete;

  private:
    Model& model_;
};

}  // namespace vkl
