#!/bin/sh
# Links with LLVM's linker: g++ -fno-use-linker-plugin -wrapper tools/link-with-lld.sh ...
#
# GCC asks its -wrapper to start each of its programs. The cross compiler of Debian knows the path of
# its own linker, so that it takes no notice of -fuse-ld.
case ${1##*/} in
  collect2) shift; exec ld.lld "$@" ;;
esac
exec "$@"
