"""The version of the C interface that this package was written for."""

VERSION = "1.0.0"
