# Shared by test: runs a program of tests and counts what it did. Sourced, not started.
# Counts into: passed, failed. Needs: a program made with GoogleTest, and jq.

passed=0
failed=0

# run_tests NAME PROGRAM [ARGUMENTS]: runs all tests of the program and adds to passed and failed. What counts
# as a failure of its own, beside the tests that failed: a program that ends with an error though none of
# its tests did (a leak, a crash in the end), and one that ran fewer tests than it lists (it ended before).
run_tests() {
    name=$1
    shift
    echo "Tests, $name"
    counts=$(mktemp)
    listed=$("$@" --gtest_list_tests 2>/dev/null | grep -E '^  ' | grep -vc '^  DISABLED_')
    "$@" --gtest_brief=1 --gtest_shuffle --gtest_output="json:$counts" 2>&1 | grep --line-buffered -vE '^\[==========\]|^$'
    status=${PIPESTATUS[0]}
    # A test that skips itself has not been run. The counts are written when all tests have been run; a program that ended before has written none.
    ran=$(jq '[.testsuites[].testsuite[] | select(.result == "COMPLETED")] | length' "$counts" 2>/dev/null)
    bad=$(jq '[.testsuites[].testsuite[] | select(.status == "RUN" and has("failures"))] | length' "$counts" 2>/dev/null)
    rm -f "$counts"
    ran=${ran:-0}
    bad=${bad:-0}
    passed=$((passed + ran - bad))
    failed=$((failed + bad))
    if [ "$listed" = 0 ]; then
        echo "The tests $name: none are listed by $1" >&2
        failed=$((failed + 1))
    elif [ "$ran" -lt "$listed" ]; then
        echo "The tests $name: $ran of $listed were run (status $status)" >&2
        failed=$((failed + 1))
    elif [ "$status" != 0 ] && [ "$bad" = 0 ]; then
        echo "The tests $name: no test failed, and yet the program ended with status $status" >&2
        failed=$((failed + 1))
    fi
}

# The closing line, and the status that goes with it.
tell_counts() {
    echo "$passed passed, $failed failed"
    [ "$failed" = 0 ]
}
