# Run by CPack on the files of the package: what Debian has elsewhere, wants besides, and compresses.
set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
set(doc ${share}/doc/${CPACK_PACKAGE_NAME})

file(MAKE_DIRECTORY ${share}/zsh/vendor-completions)
file(RENAME ${share}/zsh/site-functions/_trelm ${share}/zsh/vendor-completions/_trelm)
file(REMOVE_RECURSE ${share}/zsh/site-functions)
file(RENAME ${doc}/LICENSE ${doc}/copyright)

string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${doc}/changelog
"${CPACK_PACKAGE_NAME} (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium

  * What this version means for results stands in CHANGELOG.md.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
execute_process(COMMAND gzip -9n ${doc}/changelog ${share}/man/man1/trelm.1 COMMAND_ERROR_IS_FATAL ANY)
