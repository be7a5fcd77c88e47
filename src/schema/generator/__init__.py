"""Turns the facts of one release into C++ classes. See __main__.py for the command line."""
