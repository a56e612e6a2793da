#!/bin/sh
# One line for `make test`: non-blank lines of the tests against those of the
# product code, which the project keeps at or below 0.35.
cd "$(dirname "$0")/.." || exit 1
count() { find "$@" -type f \( -name '*.cpp' -o -name '*.h' -o -name '*.py' -o -name '*.sh' \) \
    -exec cat {} + | grep -cv '^[[:space:]]*$'; }
# Every top-level folder with C++ in it is product code, except these.
product=$(find . -mindepth 1 -maxdepth 1 -type d ! -name '.*' ! -name tests ! -name bench \
    ! -name fuzz ! -name build ! -name docs ! -name scripts ! -name cmake ! -name lang | sort)
tests=$(count tests)
code=$(find $product -type f \( -name '*.cpp' -o -name '*.h' \) -exec cat {} + | grep -cv '^[[:space:]]*$')
awk -v t="$tests" -v c="$code" 'BEGIN { printf "test size: %d test lines / %d product lines = %.2f (limit 0.35)\n", t, c, t / c }'
