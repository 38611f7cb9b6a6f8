"""``python -m quorin_libs FILE`` does what ``quorin-profile FILE`` does."""

import sys

from quorin_libs.cli import main

if __name__ == "__main__":
    sys.exit(main())
