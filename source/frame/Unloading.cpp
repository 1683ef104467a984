// SPDX-License-Identifier: AGPL-3.0-only
// What leaves the process with the library.

// The C++ runtime inside the library puts memory aside for exceptions that are thrown when there is none left, and
// would leave it behind: 72,704 bytes each time a host loads and unloads the library, as it does in a scan. This is the
// runtime's own function for that; no header declares it.
namespace __gnu_cxx // NOLINT(bugprone-reserved-identifier): the runtime's own name
{
void __freeres(); // NOLINT(bugprone-reserved-identifier)
} // namespace __gnu_cxx

namespace
{
constexpr int afterAllOthers = 101; // the lowest that is not reserved: constructed first, destroyed last

__attribute__ ((destructor (afterAllOthers))) void releaseTheRuntimesReserve()
{
    __gnu_cxx::__freeres();
}
} // namespace
