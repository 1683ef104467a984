# The one place of the release's number. It is what people see ("version 242", the version resource, --version);
# PROJECT_VERSION, which hosts read, is a number of its own and stays.
set (LARKSPIRE_RELEASE "16.242")

# The same as Windows' resources write it: 16,242.
string (REPLACE "." "," LARKSPIRE_RELEASE_COMMAS "${LARKSPIRE_RELEASE}")
