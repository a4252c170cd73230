# Shared by test: runs a program of tests and counts what it did. Sourced, not started.
# Counts into: passed, failed. Needs: a program made with GoogleTest, jq, and top (the folder of the project).

passed=0
failed=0

# How many processes share the tests of a program: two for each processor, so that none is idle while the last one
# has the long ones.
TEST_SHARDS=${TEST_SHARDS:-$((2 * $(nproc)))}

# What libraries keep to the end is not reported as a leak, by their names; a leak of ours ends the program
# with an error.
export LSAN_OPTIONS="suppressions='$top/tests/leaks.supp':print_suppressions=0"

# run_tests NAME PROGRAM [ARGUMENTS]: runs all tests of the program, in TEST_SHARDS processes at once, and adds to
# passed and failed. What counts as a failure of its own, beside the tests that failed: a process that ends with
# an error though none of its tests did (a leak, a crash in the end), and processes that together ran not as many
# tests as the program lists (one ended before, or they did not share them).
run_tests() {
    name=$1
    shift
    echo "Tests, $name"
    counts=$(mktemp -d)
    listed=$("$@" --gtest_list_tests 2>/dev/null | grep -E '^  ' | grep -vc '^  DISABLED_')
    shards=""
    for shard in $(seq 0 $((TEST_SHARDS - 1))); do
        {
            GTEST_TOTAL_SHARDS=$TEST_SHARDS GTEST_SHARD_INDEX=$shard \
                "$@" --gtest_brief=1 --gtest_shuffle --gtest_output="json:$counts/$shard.json" 2>&1 |
                grep --line-buffered -vE '^\[==========\]|^$|^Note: This is test shard|^Running main'
            echo "${PIPESTATUS[0]}" >"$counts/$shard.status"
        } &
        shards="$shards $!"
    done
    wait $shards
    ran=0
    bad=0
    ends=""
    odd=""
    for shard in $(seq 0 $((TEST_SHARDS - 1))); do
        status=$(cat "$counts/$shard.status")
        # A test that skips itself has not been run. The counts are written when all tests of the process have been
        # run; a process that ended before has written none.
        did=$(jq '[.testsuites[].testsuite[] | select(.result == "COMPLETED")] | length' "$counts/$shard.json" 2>/dev/null)
        wrong=$(jq '[.testsuites[].testsuite[] | select(.status == "RUN" and has("failures"))] | length' "$counts/$shard.json" 2>/dev/null)
        ran=$((ran + ${did:-0}))
        bad=$((bad + ${wrong:-0}))
        ends="$ends $status"
        if [ "$status" != 0 ] && [ "${wrong:-0}" = 0 ]; then odd="$odd $status"; fi
    done
    rm -rf "$counts"
    passed=$((passed + ran - bad))
    failed=$((failed + bad))
    if [ "$listed" = 0 ]; then
        echo "The tests $name: none are listed by $1" >&2
        failed=$((failed + 1))
    elif [ "$ran" != "$listed" ]; then
        echo "The tests $name: $ran of $listed were run (status$ends)" >&2
        failed=$((failed + 1))
    elif [ -n "$odd" ]; then
        echo "The tests $name: no test failed, and yet the program ended with status$odd" >&2
        failed=$((failed + 1))
    fi
}

# run_pytest NAME ARGUMENTS: the same for tests of pytest, in one process. The counts are those of its own record;
# a test that skips itself has not been run, and an end without a record, or without a test, is a failure.
run_pytest() {
    name=$1
    shift
    echo "Tests, $name"
    record=$(mktemp)
    /usr/bin/python3 -m pytest -q --no-header -p no:cacheprovider --junitxml="$record" "$@" >"$record.log" 2>&1
    status=$?
    count() { sed -n "s/.*<testsuite [^>]*$1=\"\([0-9]*\)\".*/\1/p" "$record" | head -1; }
    all=$(count tests)
    bad=$(($(count failures) + $(count errors) + 0))
    skipped=$(count skipped)
    ran=$((${all:-0} - ${skipped:-0}))
    passed=$((passed + ran - bad))
    failed=$((failed + bad))
    if [ "$status" != 0 ] || [ "$ran" = 0 ] || [ "${skipped:-0}" != 0 ]; then
        tail -60 "$record.log" >&2
        echo "The tests $name: $ran of ${all:-0} were run (status $status)" >&2
        [ "$bad" != 0 ] || failed=$((failed + 1))
    fi
    rm -f "$record" "$record.log"
}

# check NAME COMMAND [ARGUMENTS]: one more that has passed or failed.
check() {
    echo "$1"
    shift
    if "$@"; then passed=$((passed + 1)); else failed=$((failed + 1)); fi
}

# The closing line, and the status that goes with it.
tell_counts() {
    echo "$passed passed, $failed failed"
    [ "$failed" = 0 ]
}
