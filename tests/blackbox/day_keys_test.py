#!/usr/bin/python3
"""The same day's work by the keyboard alone."""
import day

day.work(day.Keys())
