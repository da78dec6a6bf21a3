// The comparison of texts.
#include <windows.h>

#include <locale>
#include <string_view>

namespace {

wchar_t Upper(wchar_t unit)
{
    // Not the process's locale, which may know the letters of ASCII alone.
    static const std::locale locale("C.UTF-8");
    return std::toupper(unit, locale);
}

std::wstring_view View(LPCWSTR text, int length)
{
    return length < 0 ? std::wstring_view(text) : std::wstring_view(text, static_cast<std::size_t>(length));
}

}  // namespace

int WINAPI CompareStringOrdinal(LPCWSTR left, int leftLength, LPCWSTR right, int rightLength, BOOL ignoreCase)
{
    const std::wstring_view leftView = View(left, leftLength), rightView = View(right, rightLength);
    for (std::size_t index = 0; index < leftView.size() && index < rightView.size(); ++index) {
        const wchar_t leftUnit = ignoreCase ? Upper(leftView[index]) : leftView[index];
        const wchar_t rightUnit = ignoreCase ? Upper(rightView[index]) : rightView[index];
        if (leftUnit != rightUnit)
            return leftUnit < rightUnit ? CSTR_LESS_THAN : CSTR_GREATER_THAN;
    }
    return leftView.size() < rightView.size()   ? CSTR_LESS_THAN
           : leftView.size() > rightView.size() ? CSTR_GREATER_THAN
                                                : CSTR_EQUAL;
}
