# SPDX-License-Identifier: MIT
# Turns a module of the Python package into one whose public names are all that doxygen lists: special
# methods and attributes, described by the docstring of their class, become private ones.
s/def __\(init\|repr\|getstate\|setstate\)__(/def _\1(/
s/self\.\([a-z]\)/self._\1/g
/^    ndim = /,/^    """/d
