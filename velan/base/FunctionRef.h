// A reference to a callable: two words, no allocation, no ownership.
#ifndef VELAN_BASE_FUNCTION_REF_H
#define VELAN_BASE_FUNCTION_REF_H

#include <concepts>
#include <functional>
#include <memory>
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

  template <typename Callable>
  requires(!std::same_as<std::remove_cvref_t<Callable>, FunctionRef> &&
           std::is_invocable_r_v<Result, Callable&, Arguments...>) FunctionRef(Callable&& callable)
      : _callable(const_cast<void*>(static_cast<const void*>(std::addressof(callable)))),
        _invoke([](void* target, Arguments... arguments) -> Result {
          return std::invoke(*static_cast<std::remove_reference_t<Callable>*>(target),
                             std::forward<Arguments>(arguments)...);
        }) {}

  Result operator()(Arguments... arguments) const { return _invoke(_callable, std::forward<Arguments>(arguments)...); }
  explicit operator bool() const { return _invoke != nullptr; }

 private:
  void* _callable = nullptr;
  Result (*_invoke)(void*, Arguments...) = nullptr;
};

}  // namespace velan

#endif  // VELAN_BASE_FUNCTION_REF_H
