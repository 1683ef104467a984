# The one place of the release's number: the version resource, --version and the packages have it from here. Three numbers
# are not the release's and stay: PROJECT_VERSION, which hosts read, and the 242 of the window and of saved settings.
set (LARKSPIRE_RELEASE "16.242")

# The same as Windows' resources write it: 16,242.
string (REPLACE "." "," LARKSPIRE_RELEASE_COMMAS "${LARKSPIRE_RELEASE}")
