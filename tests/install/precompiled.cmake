# Read at the project's start by the builds that only have to work and not to be like a user's: the standard
# headers are parsed once and not for each source, which takes a third of the time away.
cmake_language(DEFER CALL target_precompile_headers quindle PRIVATE
               <algorithm> <filesystem> <functional> <map> <memory> <optional> <set> <string> <unordered_map>
               <unordered_set> <vector>)
