#pragma once

#include <stdexcept>
#include <string>

namespace vkl {

// An error the editor does not anticipate. Nothing in the core catches it; the window shows
// "Run-time error 'N':" with the description and the program ends.
class RuntimeError : public std::runtime_error {
  public:
    RuntimeError(int number, std::string description)
        : std::runtime_error(description), number_(number), description_(std::move(description)) {}

    int number() const { return number_; }
    const std::string& description() const { return description_; }

    static RuntimeError overflow() { return {6, "Overflow"}; }
    static RuntimeError subscriptOutOfRange() { return {9, "Subscript out of range"}; }
    static RuntimeError typeMismatch() { return {13, "Type mismatch"}; }
    static RuntimeError fileNotFound() { return {53, "File not found"}; }
    static RuntimeError pathNotFound() { return {76, "Path not found"}; }
    static RuntimeError permissionDenied() { return {70, "Permission denied"}; }
    static RuntimeError objectNotSet() {
        return {91, "Object variable or With block variable not set"};
    }
    static RuntimeError noSuchMember() {
        return {438, "Object doesn't support this property or method"};
    }
    static RuntimeError invalidPicture() { return {481, "Invalid picture"}; }
    // Errors the tree control raises.
    static RuntimeError keyNotUnique() { return {35602, "Key is not unique in collection"}; }
    static RuntimeError elementNotFound() { return {35601, "Element not found"}; }
    static RuntimeError invalidParent() { return {35614, "This would introduce a cycle"}; }
    // Errors the grid control raises.
    static RuntimeError gridSubscript() { return {381, "Subscript out of range"}; }
    static RuntimeError cannotRemoveLastRow() {
        return {30015, "Cannot remove last non-fixed row"};
    }

    // The two lines the window shows for this error.
    std::string message() const {
        return "Run-time error '" + std::to_string(number_) + "':\n\n" + description_;
    }

  private:
    int number_;
    std::string description_;
};

}  // namespace vkl
