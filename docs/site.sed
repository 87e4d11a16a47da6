# SPDX-License-Identifier: MIT
# Turns a document as it is read in the source tree into a page of the site: a table of contents
# under the title, links to sources that lead to the site's own copies, and no links
# to files that are no pages.
1a\
\
[TOC]\

s,](\.\./examples/\([A-Za-z]*\)\.cpp),](\1_8cpp-example.html),g
s,\[LICENSE\](LICENSE),LICENSE,
