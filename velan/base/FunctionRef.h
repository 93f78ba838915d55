// A reference to a callable: two words, no allocation, no ownership.
#ifndef VELAN_BASE_FUNCTION_REF_H
#define VELAN_BASE_FUNCTION_REF_H

#include <concepts>
#include <cstddef>
#include <type_traits>
#include <utility>

namespace velan {

template <typename Signature>
class FunctionRef;

/// Refers to a callable that must outlive the call it is passed to; meant for parameters, never for storage.
/// Made from `nullptr` (or by default) it is empty and converts to false.
template <typename Result, typename... Arguments>
class FunctionRef<Result(Arguments...)> {
 public:
  FunctionRef() = default;
  FunctionRef(std::nullptr_t) {}

  /// Also of a plain function; of a null pointer to one it is empty.
  template <typename Callable>
  requires(!std::same_as<std::remove_cvref_t<Callable>, FunctionRef> &&
           !std::is_member_pointer_v<std::remove_cvref_t<Callable>> &&
           std::is_invocable_r_v<Result, Callable&, Arguments...>) FunctionRef(Callable&& callable) {
    using Target = std::remove_reference_t<Callable>;
    if constexpr (std::is_pointer_v<std::remove_cv_t<Target>>) {
      if (!callable) return;
    }
    if constexpr (std::is_function_v<Target>) {
      _callable = reinterpret_cast<void*>(__builtin_addressof(callable));
      _invoke = [](void* target, Arguments... arguments) -> Result {
        return call(*reinterpret_cast<Target*>(target), std::forward<Arguments>(arguments)...);
      };
    } else {
      _callable = const_cast<void*>(static_cast<const void*>(__builtin_addressof(callable)));
      _invoke = [](void* target, Arguments... arguments) -> Result {
        return call(*static_cast<Target*>(target), std::forward<Arguments>(arguments)...);
      };
    }
  }

  Result operator()(Arguments... arguments) const { return _invoke(_callable, std::forward<Arguments>(arguments)...); }
  explicit operator bool() const { return _invoke != nullptr; }

 private:
  // A callable whose result nobody wants may return one.
  template <typename Target>
  static Result call(Target& target, Arguments... arguments) {
    if constexpr (std::is_void_v<Result>) {
      target(std::forward<Arguments>(arguments)...);
    } else {
      return target(std::forward<Arguments>(arguments)...);
    }
  }

  void* _callable = nullptr;
  Result (*_invoke)(void*, Arguments...) = nullptr;
};

}  // namespace velan

#endif  // VELAN_BASE_FUNCTION_REF_H
