# SPDX-License-Identifier: MIT
"""runner.py [TEST...]: the tests of those names (as for python3 -m unittest), else all. Says at its end what was not tested;
the exit status is 77 when that is everything."""

import sys
import unittest

names = sys.argv[1:]
loader = unittest.defaultTestLoader
suite = loader.loadTestsFromNames(names) if names else loader.discover(".")
result = unittest.TextTestRunner(verbosity=2).run(suite)
for test, reason in result.skipped:
    print(f"{test}: {reason}")
if not result.wasSuccessful():
    sys.exit(1)
done = result.testsRun - len([test for test, _ in result.skipped if not str(test).startswith("setUpClass")])
sys.exit(0 if done > 0 else 77)
